#include "Plugins/AdapterIdentities.h"

#include "Host/Objects.h"
#include "Support/TemporaryFolder.h"

#include <PI/AdapterNumbers.h>

namespace {

using Host::AdapterIdentities;
using HostTest::DriveObjects;
using PI::CAdapterID;
using testing::ElementsAre;
using testing::IsEmpty;

class AdapterIdentitiesTest : public testing::Test
{
protected:
    AdapterIdentitiesTest() { PI::restoreAdapterNumbers(m_Folder.Path() / "none"); }
    ~AdapterIdentitiesTest() override { PI::restoreAdapterNumbers(m_Folder.Path() / "none"); }

    TestSupport::CTemporaryFolder m_Folder;
    AdapterIdentities m_Identities;
};

TEST_F(AdapterIdentitiesTest, NumbersEachPlaceOnce)
{
    EXPECT_THAT(m_Identities.assign({{0, 5, 0, 0}, {0, 6, 0, 0}}),
                ElementsAre(CAdapterID{0, 5, 0, 0, 1}, CAdapterID{0, 6, 0, 0, 2}));
    EXPECT_THAT(m_Identities.assign({{0, 6, 0, 0}, {1, 6, 0, 0}, {0, 5, 0, 0}}),
                ElementsAre(CAdapterID{1, 6, 0, 0, 3}));
    EXPECT_THAT(m_Identities.assign({{0, 6, 0, 0}}), IsEmpty());
}

TEST_F(AdapterIdentitiesTest, TakesTheNumbersThatWereKept)
{
    PI::restoreAdapterNumbers(m_Folder.Write("numbers", "7 0 5 0 0 localhost\n"));
    EXPECT_THAT(m_Identities.assign({{0, 5, 0, 0}, {0, 6, 0, 0}}),
                ElementsAre(CAdapterID{0, 5, 0, 0, 7}, CAdapterID{0, 6, 0, 0, 1}));
}

TEST_F(AdapterIdentitiesTest, AdaptersTellTheirPlaces)
{
    DriveObjects silent(0x91, "T", "/dev/nvme1n1");
    silent.remove(PI::PROP_PCI_DEVICE);
    const Host::ObjectStore store(HostTest::topologyOf({{0x81, "S", "/dev/nvme0n1"}, silent}));
    EXPECT_THAT(Host::adapterLocations(store), ElementsAre(CAdapterID{0, 0x81, 0x1f, 1}));
}

} // namespace
