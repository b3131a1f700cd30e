#include "UpdateSystemFixture.h"

#include <PI/EventCode.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace {

using NAMESPACE_Ostrel::CChanges;
using testing::ElementsAre;
using testing::IsEmpty;
using TestSupport::CFakeDrive;
using TestSupport::identifiers;
using TestSupport::serials;

/** The differences that a scan finds between fresh and published records. */
class Comparison : public TestSupport::UpdateSystem
{};

} // namespace

TEST_F(Comparison, NotesWhatItAddedChangedAndRemoved)
{
    for (std::uint32_t number = 1; number < 6; ++number)
        m_Fakes.Add(CFakeDrive(number));
    PublishFirst();
    m_Fakes.At(0).Kelvin(300);
    m_Fakes.At(3).m_Namespace.LBAF[0].LBADS = 12;
    m_Fakes.Remove("/dev/nvme2n1");
    m_Fakes.Remove("/dev/nvme5n1");
    m_Fakes.Add(CFakeDrive(6));
    m_Fakes.Add(CFakeDrive(7));
    const CChanges changes = Compare();
    EXPECT_THAT(serials(changes.m_AddedAdapters), ElementsAre("SN6", "SN7"));
    EXPECT_THAT(serials(changes.m_AddedDrives), ElementsAre("SN6", "SN7"));
    // The third and fourth moved up in the list of devices.
    EXPECT_THAT(serials(changes.m_ChangedAdapters), ElementsAre("SN1", "SN3", "SN4"));
    EXPECT_THAT(serials(changes.m_RemovedAdapters), ElementsAre("SN2", "SN5"));
    EXPECT_THAT(serials(changes.m_ChangedDrives), ElementsAre("SN1", "SN3", "SN4"));
    EXPECT_TRUE(changes.Any());
}

TEST_F(Comparison, AChangedAdapterIsNotedAsItWas)
{
    m_Fakes.Add(CFakeDrive(1));
    PublishFirst();
    m_Fakes.At(0).Kelvin(300);
    const CChanges changes = Compare();
    ASSERT_EQ(changes.m_ChangedAdapters.size(), 1U);
    EXPECT_EQ(changes.m_ChangedAdapters[0].m_Temperature, 25.0F);
}

TEST_F(Comparison, AChangedDriveIsNotedAsItWasWithItsAdaptersNumber)
{
    m_Fakes.Add(CFakeDrive(1));
    PublishFirst();
    m_Fakes.At(0).Kelvin(300);
    Scan(false);
    m_Adapters[0].m_GlobalAdapterNumber = 4711;
    const CChanges changes = m_Plugin.Compare(m_Adapters, m_Drives);
    ASSERT_EQ(changes.m_ChangedDrives.size(), 1U);
    EXPECT_EQ(changes.m_ChangedDrives[0].m_Temperature, 25.0F);
    EXPECT_EQ(changes.m_ChangedDrives[0].m_DeviceIndex, 4711U);
    EXPECT_EQ(changes.m_ChangedDrives[0].m_UpdateCount, 1U);
}

TEST_F(Comparison, ANewAdapterWithTwoDrivesIsOneEventAndItsFirstDrive)
{
    m_Adapters = {Adapter("A", 1)};
    m_Drives = {Drive("A", 2), Drive("A", 3)};
    const CChanges changes = m_Plugin.Compare(m_Adapters, m_Drives);
    ASSERT_EQ(changes.m_Events.size(), 1U);
    EXPECT_EQ(changes.m_Events[0].m_Id, PI::EVENT_ADAPTER_ADDED);
    EXPECT_EQ(changes.m_Events[0].m_Severity, PI::EVENT_SEVERITY_INFORMATION);
    ASSERT_EQ(changes.m_AddedDrives.size(), 1U);
    EXPECT_EQ(changes.m_AddedDrives[0].m_ID, 2U);
}

TEST_F(Comparison, ANewAdapterWithoutADriveAddsNone)
{
    m_Adapters = {Adapter("A", 1)};
    m_Drives = {Drive("a", 2), Drive("AB", 3)};
    const CChanges changes = m_Plugin.Compare(m_Adapters, m_Drives);
    EXPECT_EQ(changes.m_AddedAdapters.size(), 1U);
    EXPECT_THAT(changes.m_AddedDrives, IsEmpty());
}

TEST_F(Comparison, OfEqualSerialNumbersTheFirstLiveAdapterIsCompared)
{
    m_Plugin.m_Adapters = {Adapter("A", 1), Adapter("A", 2)};
    m_Plugin.m_Adapters[1].m_WarningFlags = 4;
    m_Adapters = {Adapter("A", 1), Adapter("A", 1)};
    m_Adapters[1].m_WarningFlags = 4;
    const CChanges changes = m_Plugin.Compare(m_Adapters, m_Drives);
    // The second fresh one differs from the first live one, and nothing was removed.
    EXPECT_THAT(identifiers(changes.m_Events), ElementsAre(PI::EVENT_RELIABILITY_DEGRADED));
    ASSERT_EQ(changes.m_ChangedAdapters.size(), 1U);
    EXPECT_EQ(changes.m_ChangedAdapters[0].m_ID, 1U);
    EXPECT_THAT(changes.m_RemovedAdapters, IsEmpty());
}

TEST_F(Comparison, EachNewAndEachVanishedAdapterOfOneSerialNumberHasItsEvent)
{
    m_Plugin.m_Adapters = {Adapter("A", 1), Adapter("A", 2)};
    m_Adapters = {Adapter("B", 3), Adapter("B", 4)};
    const CChanges changes = m_Plugin.Compare(m_Adapters, m_Drives);
    EXPECT_THAT(identifiers(changes.m_Events),
                ElementsAre(PI::EVENT_ADAPTER_ADDED, PI::EVENT_ADAPTER_ADDED, PI::EVENT_ADAPTER_REMOVED,
                            PI::EVENT_ADAPTER_REMOVED));
}

TEST_F(Comparison, OfEqualSerialNumbersTheFirstLiveDriveAndTheFirstFreshAdapterCount)
{
    m_Plugin.m_Adapters = {Adapter("A", 1)};
    m_Plugin.m_PhysicalDrives = {Drive("A", 5), Drive("A", 6)};
    m_Plugin.m_PhysicalDrives[1].m_BlockSize = 4096;
    m_Adapters = {Adapter("A", 1), Adapter("A", 2)};
    m_Adapters[0].m_Name = "first";
    m_Adapters[1].m_Name = "second";
    m_Drives = {Drive("A", 5)};
    m_Drives[0].m_BlockSize = 4096;
    const CChanges changes = m_Plugin.Compare(m_Adapters, m_Drives);
    ASSERT_EQ(changes.m_ChangedDrives.size(), 1U);
    EXPECT_EQ(changes.m_ChangedDrives[0].m_ID, 5U);
    ASSERT_EQ(changes.m_Events.size(), 1U);
    EXPECT_EQ(changes.m_Events[0].PlaceHolder1(), "first");
}

TEST_F(Comparison, SerialNumbersAreComparedToTheLastByte)
{
    m_Plugin.m_Adapters = {Adapter("A", 1), Adapter("", 2)};
    m_Adapters = {Adapter(std::string("A\0", 2), 3), Adapter("a", 4), Adapter("", 2)};
    const CChanges changes = m_Plugin.Compare(m_Adapters, m_Drives);
    EXPECT_THAT(identifiers(changes.m_Events),
                ElementsAre(PI::EVENT_ADAPTER_ADDED, PI::EVENT_ADAPTER_ADDED, PI::EVENT_ADAPTER_REMOVED));
}
