#include "Support/TraceCapture.h"
#include "UpdateSystemFixture.h"

#include <PI/ErrorCode.h>
#include <PI/EventCode.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using NAMESPACE_Ostrel::CNVMeAdapter;
using NAMESPACE_Ostrel::CNVMePhysicalDrive;
using testing::Contains;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;
using TestSupport::CCapturedLine;
using TestSupport::CFakeDrive;
using TestSupport::identifiers;
using TestSupport::serials;
using TestSupport::UpdateSystem;

constexpr std::uint32_t CHANGED = 0;
constexpr std::uint32_t UNCHANGED = PI::ERR_GENERAL_FAILURE;

} // namespace

TEST_F(UpdateSystem, AScanEqualToTheLiveStateChangesNothing)
{
    m_Fakes.Add(CFakeDrive(1));
    m_Fakes.Add(CFakeDrive(2));
    PublishFirst();
    EXPECT_EQ(Update(), UNCHANGED);
    EXPECT_THAT(m_Plugin.m_Events, IsEmpty());
    EXPECT_EQ(m_Plugin.m_Plugin.m_UpdateCount, 0U);
    EXPECT_EQ(Update(), UNCHANGED);
}

TEST_F(UpdateSystem, AdaptersComeInReverseOrderAndDrivesInTheOrderOfTheScan)
{
    for (std::uint32_t number = 1; number < 4; ++number)
        m_Fakes.Add(CFakeDrive(number));
    PublishFirst();
    EXPECT_THAT(serials(m_Plugin.m_Adapters), ElementsAre("SN1", "SN2", "SN3"));
    for (int scan = 0; scan < 2; ++scan) {
        Update();
        EXPECT_THAT(serials(m_Plugin.m_Adapters), ElementsAre("SN3", "SN2", "SN1"));
        EXPECT_THAT(serials(m_Plugin.m_PhysicalDrives), ElementsAre("SN1", "SN2", "SN3"));
    }
}

TEST_F(UpdateSystem, LinksTheFreshAdaptersToThePlugin)
{
    m_Fakes.Add(CFakeDrive(1));
    m_Fakes.Add(CFakeDrive(2));
    m_Plugin.m_Plugin.m_Children = {1, 2, 3};
    Update();
    ASSERT_EQ(m_Plugin.m_Adapters.size(), 2U);
    EXPECT_THAT(m_Plugin.m_Plugin.m_Children,
                ElementsAre(m_Plugin.m_Adapters[1].m_ID, m_Plugin.m_Adapters[0].m_ID));
    for (const CNVMeAdapter& adapter : m_Plugin.m_Adapters)
        EXPECT_THAT(adapter.m_Parents, ElementsAre(m_Plugin.m_Plugin.m_ID));
}

TEST_F(UpdateSystem, ANewAdapterMakesAnEvent)
{
    m_Fakes.Add(CFakeDrive(1));
    PublishFirst();
    m_Fakes.Add(CFakeDrive(2));
    m_Clock.Advance(77);
    EXPECT_EQ(Update(), CHANGED);
    ASSERT_EQ(m_Plugin.m_Events.size(), 1U);
    const PI::CEvent& event = m_Plugin.m_Events[0];
    EXPECT_EQ(event.m_Source, PI::EVENT_SOURCE_HOST);
    EXPECT_EQ(event.m_Id, PI::EVENT_ADAPTER_ADDED);
    EXPECT_EQ(event.m_Severity, PI::EVENT_SEVERITY_INFORMATION);
    EXPECT_EQ(event.m_Time, m_Clock.Now());
    EXPECT_EQ(event.SourceText(), "NVMe PCI Adapter (SN2)");
    EXPECT_EQ(event.PlaceHolder1(), "NVMe PCI Adapter (SN2)");
    EXPECT_EQ(event.PlaceHolder2(), " ");
    EXPECT_EQ(m_Plugin.m_Plugin.m_UpdateCount, 1U);
}

TEST_F(UpdateSystem, AVanishedAdapterMakesAnEvent)
{
    m_Fakes.Add(CFakeDrive(1));
    m_Fakes.Add(CFakeDrive(2));
    PublishFirst();
    m_Fakes.Remove("/dev/nvme1n1");
    EXPECT_EQ(Update(), CHANGED);
    ASSERT_EQ(m_Plugin.m_Events.size(), 1U);
    const PI::CEvent& event = m_Plugin.m_Events[0];
    EXPECT_EQ(event.m_Source, PI::EVENT_SOURCE_HOST);
    EXPECT_EQ(event.m_Id, PI::EVENT_ADAPTER_REMOVED);
    EXPECT_EQ(event.m_Severity, PI::EVENT_SEVERITY_WARNING);
    EXPECT_EQ(event.m_Time, m_Clock.Now());
    EXPECT_EQ(event.SourceText(), "NVMe PCI Adapter (SN1)");
    EXPECT_EQ(event.PlaceHolder1(), "NVMe PCI Adapter (SN1)");
    EXPECT_EQ(event.PlaceHolder2(), " ");
    EXPECT_EQ(m_Plugin.m_Plugin.m_UpdateCount, 1U);
    EXPECT_THAT(serials(m_Plugin.m_Adapters), ElementsAre("SN2"));
    EXPECT_THAT(serials(m_Plugin.m_PhysicalDrives), ElementsAre("SN2"));
}

TEST_F(UpdateSystem, AnAdapterWithoutAnIdentityHasAnEventWithoutAName)
{
    m_Plugin.m_AdapterIDs.clear();
    m_Fakes.Add(CFakeDrive(1));
    EXPECT_EQ(Update(), CHANGED);
    ASSERT_EQ(m_Plugin.m_Events.size(), 1U);
    EXPECT_EQ(m_Plugin.m_Events[0].SourceText(), "");
    EXPECT_EQ(m_Plugin.m_Events[0].PlaceHolder1(), "");
}

TEST_F(UpdateSystem, AChangeWithoutAnEventIsAChange)
{
    m_Fakes.Add(CFakeDrive(1));
    PublishFirst();
    m_Fakes.At(0).Kelvin(300);
    EXPECT_EQ(Update(), CHANGED);
    EXPECT_THAT(m_Plugin.m_Events, IsEmpty());
    EXPECT_EQ(m_Plugin.m_Plugin.m_UpdateCount, 0U);
    EXPECT_EQ(m_Plugin.m_Adapters[0].m_Temperature, 27.0F);
    EXPECT_EQ(Update(), UNCHANGED);
}

TEST_F(UpdateSystem, AChangedDriveAloneIsAChange)
{
    m_Fakes.Add(CFakeDrive(1));
    PublishFirst();
    m_Fakes.At(0).m_Namespace.LBAF[0].LBADS = 12;
    EXPECT_EQ(Update(), CHANGED);
    EXPECT_THAT(identifiers(m_Plugin.m_Events), ElementsAre(PI::EVENT_DRIVE_CHANGED));
    EXPECT_EQ(m_Plugin.m_PhysicalDrives[0].m_BlockSize, 4096U);
}

TEST_F(UpdateSystem, WarningsComeLastFirst)
{
    m_Fakes.Add(CFakeDrive(1));
    PublishFirst();
    m_Fakes.At(0).Warning(0x14);
    EXPECT_EQ(Update(), CHANGED);
    EXPECT_THAT(identifiers(m_Plugin.m_Events),
                ElementsAre(PI::EVENT_RELIABILITY_DEGRADED, PI::EVENT_MEMORY_BACKUP_FAILED));
    EXPECT_EQ(m_Plugin.m_Events[0].m_Source, m_Plugin.m_Adapters[0].m_ID);
    EXPECT_EQ(m_Plugin.m_Events[0].SourceText(), "NVMe PCI Adapter (SN1)");
    m_Plugin.m_Events.clear();

    m_Fakes.At(0).Warning(0x04);
    EXPECT_EQ(Update(), CHANGED);
    EXPECT_THAT(m_Plugin.m_Events, IsEmpty());
    m_Fakes.At(0).Warning(0);
    EXPECT_EQ(Update(), CHANGED);
    EXPECT_THAT(identifiers(m_Plugin.m_Events), ElementsAre(PI::EVENT_WARNINGS_CLEARED));
}

TEST_F(UpdateSystem, TheTemperatureStatisticsOfAnIntelDriveMakeEvents)
{
    m_Fakes.Add(CFakeDrive(1).Vendor(INTEL).Model("INTEL SSDPE2KX").TemperatureLog(100, 23));
    PublishFirst();
    m_Fakes.At(0).TemperatureLog(101, 23);
    EXPECT_EQ(Update(), CHANGED);
    m_Fakes.At(0).TemperatureLog(103, 23);
    EXPECT_EQ(Update(), CHANGED);
    m_Fakes.At(0).TemperatureLog(107, 23);
    EXPECT_EQ(Update(), CHANGED);
    EXPECT_THAT(identifiers(m_Plugin.m_Events),
                ElementsAre(PI::EVENT_TEMPERATURE_NEAR_CRITICAL, PI::EVENT_TEMPERATURE_HIGH,
                            PI::EVENT_TEMPERATURE_CRITICAL, PI::EVENT_TEMPERATURE_ABOVE_CRITICAL));
}

TEST_F(UpdateSystem, EventsOfOneScanComeBehindEarlierOnesAndLastMadeFirst)
{
    for (std::uint32_t number = 1; number < 4; ++number)
        m_Fakes.Add(CFakeDrive(number));
    PublishFirst();
    m_Plugin.m_Events.resize(1);
    m_Plugin.m_Events[0].m_Id = 1;
    // Made in this order: a warning of the first, the fourth added, the third removed, the second's disk.
    m_Fakes.At(0).Warning(0x04);
    m_Fakes.At(1).m_Namespace.LBAF[0].LBADS = 12;
    m_Fakes.Remove("/dev/nvme3n1");
    m_Fakes.Add(CFakeDrive(4));
    EXPECT_EQ(Update(), CHANGED);
    EXPECT_THAT(identifiers(m_Plugin.m_Events),
                ElementsAre(1U, PI::EVENT_DRIVE_CHANGED, PI::EVENT_ADAPTER_REMOVED, PI::EVENT_ADAPTER_ADDED,
                            PI::EVENT_RELIABILITY_DEGRADED));
    EXPECT_EQ(m_Plugin.m_Plugin.m_UpdateCount, 2U);
}

TEST_F(UpdateSystem, ADriveThatAppearsOrVanishesAloneIsNoChange)
{
    m_Fakes.Add(CFakeDrive(1));
    PublishFirst();
    Scan(false);
    m_Drives.push_back(Drive("SN9", 1));
    EXPECT_EQ(m_Plugin.UpdateSystem(m_Adapters, m_Drives), UNCHANGED);
    EXPECT_THAT(serials(m_Plugin.m_PhysicalDrives), ElementsAre("SN1", "SN9"));
    EXPECT_EQ(Update(), UNCHANGED);
    EXPECT_THAT(serials(m_Plugin.m_PhysicalDrives), ElementsAre("SN1"));
    EXPECT_THAT(m_Plugin.m_Events, IsEmpty());
}

TEST_F(UpdateSystem, AChangedDriveWithoutAnAdapterIsNoChange)
{
    m_Plugin.m_PhysicalDrives = {Drive("A", 1)};
    m_Drives = {Drive("A", 1)};
    m_Drives[0].m_BlockSize = 4096;
    EXPECT_EQ(m_Plugin.UpdateSystem(m_Adapters, m_Drives), UNCHANGED);
    EXPECT_THAT(m_Plugin.m_Events, IsEmpty());
    EXPECT_EQ(m_Plugin.m_PhysicalDrives[0].m_BlockSize, 4096U);
}

TEST_F(UpdateSystem, TracesItsWay)
{
    m_Fakes.Add(CFakeDrive(1));
    PublishFirst();
    // The tests of one process share a database; none of these drives has a row there.
    for (const CNVMeAdapter& adapter : m_Plugin.m_Adapters)
        m_Plugin.DeleteObjectFromDatabase(adapter);
    m_Fakes.Add(CFakeDrive(2));
    m_Fakes.At(0).Warning(4);
    Scan(false);
    const TestSupport::CTraceCapture capture(127);
    EXPECT_EQ(m_Plugin.UpdateSystem(m_Adapters, m_Drives), CHANGED);
    EXPECT_THAT(capture.Texts(),
                ElementsAre("ENTER UpdateSystem for 2 adapter, 2 physicalDrives", "Update () 0 -> 4",
                            "Before m_EventsLock.Wait (sg)", "After m_EventsLock.Wait (sg)",
                            StartsWith("ENTER SetDatabaseObjectProperties (Adapter) ("),
                            "LEAVE SetDatabaseObjectProperties (Adapter) -> 0",
                            "ENTER SetDatabaseObjectProperties (PhysicalDisk)",
                            "LEAVE UpdateSystem ret = 0"));
    std::vector<std::uint32_t> levels;
    for (const CCapturedLine& line : capture.Lines())
        levels.push_back(line.m_Level);
    EXPECT_THAT(levels, ElementsAre(2U, 2U, 8U, 8U, 2U, 2U, 2U, 2U));
}

TEST_F(UpdateSystem, WritesWhatChangedInItsOrder)
{
    m_Fakes.Add(CFakeDrive(1));
    m_Fakes.Add(CFakeDrive(2));
    PublishFirst();
    m_Plugin.InsertObjectToDatabase(m_Plugin.m_Plugin);
    for (const CNVMeAdapter& adapter : m_Plugin.m_Adapters)
        m_Plugin.InsertObjectToDatabase(adapter);
    for (const CNVMePhysicalDrive& drive : m_Plugin.m_PhysicalDrives)
        m_Plugin.InsertObjectToDatabase(drive);
    const std::int32_t changed = m_Plugin.m_Adapters[0].m_GlobalAdapterNumber;
    const std::int32_t removed = m_Plugin.m_Adapters[1].m_GlobalAdapterNumber;

    m_Fakes.At(0).Warning(4).Model("Changed").m_Namespace.LBAF[0].LBADS = 12;
    m_Fakes.Remove(CFakeDrive(2).m_DeviceName);
    m_Fakes.Add(CFakeDrive(3).Model("Added"));
    Scan(false);
    const std::int32_t added = m_Adapters[1].m_GlobalAdapterNumber;
    const TestSupport::CTraceCapture capture(128);
    EXPECT_EQ(m_Plugin.UpdateSystem(m_Adapters, m_Drives), CHANGED);
    const auto adapterLine = [](const std::string& serial, std::int32_t number, const std::string& what) {
        return "Adapter (NVMe PCI Adapter (" + serial + ")) (" + std::to_string(number) + ") " + what +
               " db.";
    };
    EXPECT_THAT(capture.Texts(),
                ElementsAre(adapterLine("SN3", added, "inserted to"),
                            adapterLine("SN1", changed, "updated in"),
                            adapterLine("SN2", removed, "removed from"), "PD (Added) inserted to db.",
                            "PD (Plain Drive) updated in db.", "Plugin NVMe updated in db."));
}

// The new adapter has replaced the row of the slot; a delete for the old one would remove it.
TEST_F(UpdateSystem, ASwapInOneSlotLeavesTheNewDrivesRow)
{
    m_Fakes.Add(CFakeDrive(1));
    PublishFirst();
    m_Plugin.InsertObjectToDatabase(m_Plugin.m_Adapters[0]);
    m_Fakes.At(0).Serial("NEWCOMER");
    Scan(false);
    const TestSupport::CTraceCapture capture(128);
    EXPECT_EQ(m_Plugin.UpdateSystem(m_Adapters, m_Drives), CHANGED);
    EXPECT_THAT(capture.Texts(), Not(Contains(HasSubstr("removed from db."))));
    EXPECT_EQ(m_Plugin.UpdateObjectInDatabase(m_Plugin.m_Adapters[0]), 0U);
    EXPECT_THAT(capture.Texts(), Contains(HasSubstr("updated in db.")));
}
