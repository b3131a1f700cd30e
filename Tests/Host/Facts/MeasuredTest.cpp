#include "Facts/Measured.h"

#include "Commands/TopologyCommand.h"
#include "Host/Catalogue.h"
#include "Host/Objects.h"
#include "Support/FakeDrives.h"

#include <PI/StateCode.h>
#include <TLXX/NvmeQuery.h>

#include <gmock/gmock.h>

namespace {

using namespace Host::Cli;
using HostTest::property;
using testing::AllOf;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::Not;

PI::CProperty stateCode(std::uint32_t id, std::uint32_t value)
{
    return property(id, 1, value, std::vector<std::uint32_t>{});
}

/** An adapter of the installed plug-in with the states of a new drive, and its medium. */
class MeasuredTest : public testing::Test
{
protected:
    MeasuredTest()
    {
        m_Objects.m_Adapter.m_ID = m_Objects.m_Drive.m_Parents[0] = 0x0139000000000001;
        m_Objects.m_Drive.m_ID = m_Objects.m_Adapter.m_Children[0] = 0x0139000000000002;
        m_Objects.remove(PI::PROP_STATUS_REASONS);
        m_Objects.remove(PI::PROP_HEALTH_STATUS);
        for (const auto& [id, value] : {std::pair(PI::PROP_HEALTH_STATUS, PI::HEALTH_HEALTHY),
                                        {PI::PROP_SPARE_STATE, PI::SPARE_SUFFICIENT},
                                        {PI::PROP_WEAR_STATE, PI::WEAR_OK}})
            m_Objects.m_Adapter.m_Properties.push_back(stateCode(id, value));
        m_Drives.Add(TestSupport::CFakeDrive(0)).LegacyLog(10, 100);
        TLXX::VendorLogPage page{};
        (void)TLXX::NVMeStorageQueryPropertyGetVendorSpecificLogPage("/dev/nvme0n1", 0xCA, page);
        m_Objects.m_Drive.m_Properties.push_back(stateCode(PI::PROP_HEALTH_STATUS, PI::DRIVE_OPERATIONAL));
    }

    void loseHealthLog()
    {
        for (const std::uint32_t id :
             {PI::PROP_DRIVE_TEMPERATURE, PI::PROP_DATA_READ, PI::PROP_DATA_WRITTEN, PI::PROP_POWER_ON_HOURS})
            m_Objects.remove(id);
    }

    Host::ObjectStore store() const
    {
        return Host::ObjectStore(HostTest::topologyOf({m_Objects}), {m_State});
    }

    std::vector<std::uint32_t> with(Basis basis, std::size_t place = 1) const
    {
        const Host::ObjectStore store = this->store();
        std::vector<std::uint32_t> ids;
        for (const PI::CProperty& each : store.objects().at(place).m_Properties)
            if (basisOf(store, store.objects().at(place), each) == basis)
                ids.push_back(each.Id());
        return ids;
    }

    std::string text(bool colour) const
    {
        const Host::ObjectStore store = this->store();
        return propertiesText(store, store.objects().at(1), {200, colour}, 0);
    }

    HostTest::DriveObjects m_Objects{16, "SERIAL", "/dev/nvme0n1"};
    TLXX::CControllerState m_State;
    TestSupport::CFakeDrives m_Drives;

private:
    HostTest::Catalogue m_Catalogue;
};

TEST_F(MeasuredTest, AStateThatIsTheSameForAllIsNotMeasured)
{
    EXPECT_THAT(with(Basis::NotMeasured), ElementsAre(PI::PROP_SPARE_STATE));
    EXPECT_THAT(with(Basis::NotMeasured, 2), ElementsAre(PI::PROP_HEALTH_STATUS));
    m_Objects.remove(PI::PROP_VENDOR);
    m_Objects.m_Adapter.m_Properties.push_back(property(PI::PROP_VENDOR, 1, "KIOXIA"));
    EXPECT_THAT(with(Basis::NotMeasured), ElementsAre(PI::PROP_SPARE_STATE, PI::PROP_WEAR_STATE));
    EXPECT_THAT(with(Basis::NotRead), testing::IsEmpty());
}

TEST_F(MeasuredTest, OfOtherPluginsNobodyKnowsThat)
{
    m_Objects.m_Adapter.m_ID = m_Objects.m_Drive.m_Parents[0] = 0x1267000000000001;
    m_Objects.m_Drive.m_ID = m_Objects.m_Adapter.m_Children[0] = 0x1267000000000002;
    EXPECT_THAT(with(Basis::NotMeasured), testing::IsEmpty());
    EXPECT_THAT(with(Basis::NotMeasured, 2), testing::IsEmpty());
}

TEST_F(MeasuredTest, WithoutItsHealthLogADriveIsNotHealthy)
{
    EXPECT_EQ(healthLogRead(store(), store().objects().at(1)), true);
    loseHealthLog();
    EXPECT_EQ(healthLogRead(store(), store().objects().at(1)), false);
    EXPECT_EQ(healthLogRead(store(), store().objects().at(2)), false);
    EXPECT_EQ(healthLogRead(store(), store().objects().at(0)), std::nullopt);
    EXPECT_THAT(with(Basis::NotRead), ElementsAre(PI::PROP_AVAILABLE_SPARE, PI::PROP_SPARE_THRESHOLD,
                                                  PI::PROP_MEDIA_ERRORS, PI::PROP_HEALTH_STATUS));
    // Another log reported this.
    m_Objects.remove(PI::PROP_HEALTH_STATUS);
    m_Objects.m_Adapter.m_Properties.push_back(stateCode(PI::PROP_HEALTH_STATUS, PI::HEALTH_DEGRADED));
    EXPECT_THAT(with(Basis::NotRead), Not(testing::Contains(PI::PROP_HEALTH_STATUS)));
}

TEST_F(MeasuredTest, AWearThatTheDriveNeverToldIsNotRead)
{
    const TestSupport::CFakeDrives others;
    EXPECT_THAT(with(Basis::NotRead), ElementsAre(PI::PROP_WEAR_STATE));
    EXPECT_THAT(text(true), HasSubstr("  OK (not measured)\n"));
    m_Objects.remove(PI::PROP_WEAR_STATE);
    m_Objects.m_Adapter.m_Properties.push_back(stateCode(PI::PROP_WEAR_STATE, PI::WEAR_WARNING));
    EXPECT_THAT(with(Basis::NotRead), testing::IsEmpty()) << "nothing but its log says so";
}

TEST_F(MeasuredTest, TheDiskIsAskedAtTheSystemsPath)
{
    const auto path = [this] {
        const Host::ObjectStore store = this->store();
        return diskPathOf(store, store.objects().at(1));
    };
    EXPECT_EQ(path(), "/dev/nvme0n1");
    m_State.m_DeviceName = "\\\\.\\nvme0n1";
    EXPECT_EQ(path(), "\\\\.\\nvme0n1");
}

TEST_F(MeasuredTest, EachSignOfAHealthLogIsEnough)
{
    loseHealthLog();
    for (const std::uint32_t id :
         {PI::PROP_TEMPERATURE, PI::PROP_POWER_ON_HOURS, PI::PROP_DATA_READ, PI::PROP_DATA_WRITTEN}) {
        m_Objects.m_Adapter.m_Properties.push_back(property(id, 1, std::uint64_t{0}));
        EXPECT_EQ(healthLogRead(store(), store().objects().at(1)), true) << id;
        m_Objects.remove(id);
    }
    m_Objects.m_Drive.m_Properties.push_back(property(PI::PROP_DRIVE_TEMPERATURE, 1, 30.0F));
    EXPECT_EQ(healthLogRead(store(), store().objects().at(1)), true);
}

TEST_F(MeasuredTest, TheRowsKeepTheirTextsWithoutColourBelowASentence)
{
    EXPECT_THAT(text(true), AllOf(HasSubstr("\033[32mHealthy\033[0m"),
                                  HasSubstr("  Sufficient (not measured)\n"), Not(HasSubstr("health log"))));
    loseHealthLog();
    EXPECT_THAT(text(true), HasSubstr("  Healthy (not measured)\n"));
    EXPECT_THAT(text(false), testing::StartsWith("The health log of this drive was not read. "));
}

TEST_F(MeasuredTest, ThePlaceThatIsNotTheRealOneIsSaidAboveTheRows)
{
    m_State.m_DeviceName = "/dev/nvme0n1";
    m_State.m_Location = TLXX::CPciLocation{0, 16, 0x1f, 1};
    const auto caveats = [&](std::size_t place) {
        const Host::ObjectStore store = this->store();
        return caveatsOf(store, store.objects().at(place));
    };
    EXPECT_THAT(caveats(1), testing::IsEmpty());
    m_State.m_Location->m_Segment = 0x10000;
    const std::string segment =
        "The controller is at 10000:10:1f.1. The rows below do not show its PCI segment.";
    EXPECT_THAT(caveats(1), ElementsAre(segment));
    EXPECT_THAT(caveats(2), ElementsAre(segment));
    m_State.m_Location->m_Bus = 17;
    EXPECT_THAT(caveats(1), ElementsAre(HasSubstr("10000:11:1f.1. The rows below show another place")));
    EXPECT_THAT(caveats(0), testing::IsEmpty());
}

} // namespace
