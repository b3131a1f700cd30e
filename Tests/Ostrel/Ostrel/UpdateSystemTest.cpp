#include "ScanFixture.h"
#include "Support/TraceCapture.h"

#include <TLX/WaitResult.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <functional>
#include <string>
#include <vector>

namespace {

using NAMESPACE_Ostrel::CChanges;
using NAMESPACE_Ostrel::CNVMeAdapter;
using NAMESPACE_Ostrel::CNVMePhysicalDrive;
using testing::Contains;
using testing::ElementsAre;
using testing::ElementsAreArray;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;
using TestSupport::CCapturedLine;
using TestSupport::CFakeDrive;

constexpr std::uint32_t CHANGED = 0;
constexpr std::uint32_t UNCHANGED = 20000;

template<typename Record>
std::vector<std::string> serials(const std::vector<Record>& records)
{
    std::vector<std::string> texts;
    for (const Record& record : records)
        texts.push_back(record.m_SerialNumber);
    return texts;
}

std::vector<std::uint32_t> identifiers(const std::vector<PI::CEvent>& events)
{
    std::vector<std::uint32_t> ids;
    for (const PI::CEvent& event : events)
        ids.push_back(event.m_Id);
    return ids;
}

/** Publishes scans as the worker does, with both locks held. */
class UpdateSystem : public TestSupport::CScanFixture
{
protected:
    UpdateSystem()
    {
        for (auto* lock : {&m_Plugin.m_DataLock, &m_Plugin.m_EventsLock}) {
            EXPECT_EQ(lock->Init(), TLX::Threading::WaitResult::Taken);
            EXPECT_EQ(lock->Wait(), TLX::Threading::WaitResult::Taken);
        }
        m_Plugin.m_Plugin.m_ID = FIRST_ID | 0xFFFF;
        for (std::uint32_t bus = 0; bus < 10; ++bus) {
            PI::CAdapterID identity;
            identity.m_Bus = bus;
            identity.m_AdapterNumber = bus;
            m_Plugin.m_AdapterIDs.push_back(identity);
        }
    }

    ~UpdateSystem() override
    {
        m_Plugin.m_EventsLock.Release();
        m_Plugin.m_DataLock.Release();
    }

    /** The machine's drives as they are now become the first inventory. */
    void PublishFirst()
    {
        Scan();
        Publish();
    }

    /** A later scan. */
    std::uint32_t Update()
    {
        Scan(false);
        return m_Plugin.UpdateSystem(m_Adapters, m_Drives);
    }

    CChanges Compare()
    {
        Scan(false);
        return m_Plugin.Compare(m_Adapters, m_Drives);
    }

    CNVMeAdapter Adapter(const std::string& serial, std::uint64_t id)
    {
        CNVMeAdapter adapter;
        adapter.m_SerialNumber = serial;
        adapter.m_ID = id;
        return adapter;
    }

    CNVMePhysicalDrive Drive(const std::string& serial, std::uint64_t id)
    {
        CNVMePhysicalDrive drive;
        drive.m_SerialNumber = serial;
        drive.m_ID = id;
        return drive;
    }
};

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
    EXPECT_EQ(event.m_Source, 19002U);
    EXPECT_EQ(event.m_Id, 11093U);
    EXPECT_EQ(event.m_Severity, 2U);
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
    EXPECT_EQ(event.m_Source, 19002U);
    EXPECT_EQ(event.m_Id, 11094U);
    EXPECT_EQ(event.m_Severity, 3U);
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
    EXPECT_THAT(identifiers(m_Plugin.m_Events), ElementsAre(10985U));
    EXPECT_EQ(m_Plugin.m_PhysicalDrives[0].m_BlockSize, 4096U);
}

TEST_F(UpdateSystem, WarningsComeLastFirst)
{
    m_Fakes.Add(CFakeDrive(1));
    PublishFirst();
    m_Fakes.At(0).Warning(0x14);
    EXPECT_EQ(Update(), CHANGED);
    EXPECT_THAT(identifiers(m_Plugin.m_Events), ElementsAre(11088U, 10957U));
    EXPECT_EQ(m_Plugin.m_Events[0].m_Source, m_Plugin.m_Adapters[0].m_ID);
    EXPECT_EQ(m_Plugin.m_Events[0].SourceText(), "NVMe PCI Adapter (SN1)");
    m_Plugin.m_Events.clear();

    m_Fakes.At(0).Warning(0x04);
    EXPECT_EQ(Update(), CHANGED);
    EXPECT_THAT(m_Plugin.m_Events, IsEmpty());
    m_Fakes.At(0).Warning(0);
    EXPECT_EQ(Update(), CHANGED);
    EXPECT_THAT(identifiers(m_Plugin.m_Events), ElementsAre(10980U));
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
    EXPECT_THAT(identifiers(m_Plugin.m_Events), ElementsAre(10967U, 10962U, 10959U, 10960U));
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
    EXPECT_THAT(identifiers(m_Plugin.m_Events), ElementsAre(1U, 10985U, 11094U, 11093U, 11088U));
    EXPECT_EQ(m_Plugin.m_Plugin.m_UpdateCount, 2U);
}

TEST_F(UpdateSystem, NotesWhatItAddedChangedAndRemoved)
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

TEST_F(UpdateSystem, AChangedAdapterIsNotedAsItWas)
{
    m_Fakes.Add(CFakeDrive(1));
    PublishFirst();
    m_Fakes.At(0).Kelvin(300);
    const CChanges changes = Compare();
    ASSERT_EQ(changes.m_ChangedAdapters.size(), 1U);
    EXPECT_EQ(changes.m_ChangedAdapters[0].m_Temperature, 25.0F);
}

TEST_F(UpdateSystem, AChangedDriveIsNotedAsItWasWithItsAdaptersNumber)
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

TEST_F(UpdateSystem, ANewAdapterWithTwoDrivesIsOneEventAndItsFirstDrive)
{
    m_Adapters = {Adapter("A", 1)};
    m_Drives = {Drive("A", 2), Drive("A", 3)};
    const CChanges changes = m_Plugin.Compare(m_Adapters, m_Drives);
    ASSERT_EQ(changes.m_Events.size(), 1U);
    EXPECT_EQ(changes.m_Events[0].m_Id, 11093U);
    EXPECT_EQ(changes.m_Events[0].m_Severity, 2U);
    ASSERT_EQ(changes.m_AddedDrives.size(), 1U);
    EXPECT_EQ(changes.m_AddedDrives[0].m_ID, 2U);
}

TEST_F(UpdateSystem, ANewAdapterWithoutADriveAddsNone)
{
    m_Adapters = {Adapter("A", 1)};
    m_Drives = {Drive("a", 2), Drive("AB", 3)};
    const CChanges changes = m_Plugin.Compare(m_Adapters, m_Drives);
    EXPECT_EQ(changes.m_AddedAdapters.size(), 1U);
    EXPECT_THAT(changes.m_AddedDrives, IsEmpty());
}

TEST_F(UpdateSystem, OfEqualSerialNumbersTheFirstLiveAdapterIsCompared)
{
    m_Plugin.m_Adapters = {Adapter("A", 1), Adapter("A", 2)};
    m_Plugin.m_Adapters[1].m_WarningFlags = 4;
    m_Adapters = {Adapter("A", 1), Adapter("A", 1)};
    m_Adapters[1].m_WarningFlags = 4;
    const CChanges changes = m_Plugin.Compare(m_Adapters, m_Drives);
    // The second fresh one differs from the first live one, and nothing was removed.
    EXPECT_THAT(identifiers(changes.m_Events), ElementsAre(11088U));
    ASSERT_EQ(changes.m_ChangedAdapters.size(), 1U);
    EXPECT_EQ(changes.m_ChangedAdapters[0].m_ID, 1U);
    EXPECT_THAT(changes.m_RemovedAdapters, IsEmpty());
}

TEST_F(UpdateSystem, EachNewAndEachVanishedAdapterOfOneSerialNumberHasItsEvent)
{
    m_Plugin.m_Adapters = {Adapter("A", 1), Adapter("A", 2)};
    m_Adapters = {Adapter("B", 3), Adapter("B", 4)};
    const CChanges changes = m_Plugin.Compare(m_Adapters, m_Drives);
    EXPECT_THAT(identifiers(changes.m_Events), ElementsAre(11093U, 11093U, 11094U, 11094U));
}

TEST_F(UpdateSystem, OfEqualSerialNumbersTheFirstLiveDriveAndTheFirstFreshAdapterCount)
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

TEST_F(UpdateSystem, SerialNumbersAreComparedToTheLastByte)
{
    m_Plugin.m_Adapters = {Adapter("A", 1), Adapter("", 2)};
    m_Adapters = {Adapter(std::string("A\0", 2), 3), Adapter("a", 4), Adapter("", 2)};
    const CChanges changes = m_Plugin.Compare(m_Adapters, m_Drives);
    EXPECT_THAT(identifiers(changes.m_Events), ElementsAre(11093U, 11093U, 11094U));
}

TEST_F(UpdateSystem, TracesItsWay)
{
    m_Fakes.Add(CFakeDrive(1));
    PublishFirst();
    // Tests of one process share a database; here none of these has a row.
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

// The newcomer has taken over the row of the slot; deleting the former would take it away.
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

// A record differs when any single member of its own does, and never by its place in the topology.

TEST(RecordComparison, EveryMemberOfAnAdapterCounts)
{
    const std::vector<std::function<void(CNVMeAdapter&)>> changes = {
        [](auto& a) { a.m_DeviceIndex++; },
        [](auto& a) { a.m_GlobalAdapterNumber++; },
        [](auto& a) { a.m_SerialNumber = "x"; },
        [](auto& a) { a.m_Vendor = "x"; },
        [](auto& a) { a.m_Model = "x"; },
        [](auto& a) { a.m_Name = "x"; },
        [](auto& a) { a.m_Location = "x"; },
        [](auto& a) { a.m_Driver = "x"; },
        [](auto& a) { a.m_DriverVersion = "x"; },
        [](auto& a) { a.m_FirmwareRevision = "x"; },
        [](auto& a) { a.m_VendorTag = "x"; },
        [](auto& a) { a.m_DeviceName = "x"; },
        [](auto& a) { a.m_Segment++; },
        [](auto& a) { a.m_Bus++; },
        [](auto& a) { a.m_Device++; },
        [](auto& a) { a.m_Function++; },
        [](auto& a) { a.m_WarningFlags++; },
        [](auto& a) { a.m_EANormalized++; },
        [](auto& a) { a.m_ADNormalized++; },
        [](auto& a) { a.m_UnsafeShutdowns++; },
        [](auto& a) { a.m_CorrectableErrors++; },
        [](auto& a) { a.m_Temperature = 7; },
        [](auto& a) { a.m_HealthStatus++; },
        [](auto& a) { a.m_HealthReasons.push_back(1); },
        [](auto& a) { a.m_UncorrectableErrors++; },
        [](auto& a) { a.m_SpareStatus++; },
        [](auto& a) { a.m_DataUnitsRead = 7; },
        [](auto& a) { a.m_DataUnitsWritten = 7; },
        [](auto& a) { a.m_PowerOnHours = 7; },
        [](auto& a) { a.m_ReserveSpace++; },
        [](auto& a) { a.m_LifetimeRating = 7; },
        [](auto& a) { a.m_SpareState++; },
        [](auto& a) { a.m_WarningThreshold++; },
        [](auto& a) { a.m_ModelName = "x"; },
        [](auto& a) { a.m_EndOfLifeDate = "x"; }};
    for (std::size_t index = 0; index < changes.size(); ++index) {
        CNVMeAdapter changed;
        changes[index](changed);
        EXPECT_FALSE(changed == CNVMeAdapter()) << "member " << index;
        EXPECT_TRUE(changed == changed); // NOLINT
    }
}

TEST(RecordComparison, EveryMemberOfADriveCounts)
{
    const std::vector<std::function<void(CNVMePhysicalDrive&)>> changes = {
        [](auto& d) { d.m_DeviceIndex = 7; },     [](auto& d) { d.m_SerialNumber = "x"; },
        [](auto& d) { d.m_Vendor = "x"; },        [](auto& d) { d.m_Model = "x"; },
        [](auto& d) { d.m_ProductName = "x"; },   [](auto& d) { d.m_Location = "x"; },
        [](auto& d) { d.m_DeviceName = "x"; },    [](auto& d) { d.m_Status++; },
        [](auto& d) { d.m_BlockSize++; },         [](auto& d) { d.m_ReservedMiB++; },
        [](auto& d) { d.m_ReservedPercent++; },   [](auto& d) { d.m_CapacityMiB++; },
        [](auto& d) { d.m_UsableCapacityMiB++; }, [](auto& d) { d.m_Temperature = 7; }};
    for (std::size_t index = 0; index < changes.size(); ++index) {
        CNVMePhysicalDrive changed;
        changes[index](changed);
        EXPECT_FALSE(changed == CNVMePhysicalDrive()) << "member " << index;
    }
}

TEST(RecordComparison, ThePlaceInTheTopologyDoesNotCount)
{
    const auto move = [](PI::CObject& object) {
        object.m_ID = 7;
        object.m_Type = 8;
        object.m_UpdateCount = 9;
        object.m_Parents = {1};
        object.m_Children = {2};
        object.m_Properties.resize(1);
        object.m_Operations.resize(1);
    };
    CNVMeAdapter adapter;
    move(adapter);
    EXPECT_TRUE(adapter == CNVMeAdapter());
    CNVMePhysicalDrive drive;
    move(drive);
    EXPECT_TRUE(drive == CNVMePhysicalDrive());
}
