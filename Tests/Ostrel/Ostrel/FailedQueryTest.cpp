#include "WorkerFixture.h"

#include <PI/EventCode.h>
#include <PI/StateCode.h>

#include <gmock/gmock.h>

#include <utility>

using namespace NAMESPACE_Ostrel;
using testing::ElementsAre;
using testing::IsEmpty;
using TestSupport::CFakeDrive;

namespace {

constexpr std::uint16_t INTEL = 0x8086;
constexpr std::uint32_t REFUSED = 5;

/** The worker's reports after a cycle in which one query of a drive failed: none, because nothing changed. */
class CFailedQuery : public TestSupport::CWorkerFixture
{
protected:
    /** Starts with `drive`, with settled names and no pending events. */
    void StartOver(CFakeDrive drive)
    {
        m_Drives.Add(std::move(drive));
        Start();
        Settle();
        (void)CollectEvents();
        m_Adapter = m_Api.m_Adapters.at(0);
        m_Drive = m_Api.m_PhysicalDrives.at(0);
    }

    /** `failing` is a cycle with the fault. After it the drive answers again. */
    void ExpectNothingOf(const std::function<void(CFakeDrive&)>& failing)
    {
        m_Drives.Change(0, failing);
        Force();
        EXPECT_THAT(CollectEvents(), IsEmpty());
        ExpectSameRecords();
        const auto healed = m_Healed;
        m_Drives.Change(0, [&](CFakeDrive& drive) { drive.m_VendorLogs = healed; });
        Force();
        EXPECT_THAT(CollectEvents(), IsEmpty()) << "once the drive was well again";
        ExpectSameRecords();
    }

    void ExpectSameRecords()
    {
        ASSERT_EQ(m_Api.m_Adapters.size(), 1U);
        EXPECT_TRUE(m_Api.m_Adapters[0] == m_Adapter);
        EXPECT_TRUE(m_Api.m_PhysicalDrives.at(0) == m_Drive);
    }

    CNVMeAdapter m_Adapter;
    CNVMePhysicalDrive m_Drive;
    std::map<std::uint8_t, TLXX::VendorLogPage> m_Healed;
};

TEST_F(CFailedQuery, OfTheHealthLogClearsNoStandingWarning)
{
    StartOver(CFakeDrive(0).Warning(0x15));
    EXPECT_EQ(m_Adapter.m_WarningFlags, 0x15U);
    ExpectNothingOf([](CFakeDrive& drive) { drive.m_HealthStatuses = {REFUSED}; });
}

TEST_F(CFailedQuery, IsAHealthLogOfZerosToo)
{
    StartOver(CFakeDrive(0).Warning(0x15));
    const TLXX::NVME_SMART_HEALTH_INFORMATION_LOG good = m_Drives.At(0).m_Health;
    m_Drives.Change(0, [](CFakeDrive& drive) { drive.m_Health = {}; });
    Force();
    EXPECT_THAT(CollectEvents(), IsEmpty());
    ExpectNothingOf([&](CFakeDrive& drive) { drive.m_Health = good; });
}

TEST_F(CFailedQuery, OfTheTemperatureLogClearsNoStandingWarning)
{
    const CFakeDrive drive = CFakeDrive(0).Vendor(INTEL).TemperatureLog(104, 20).LegacyLog(60, 100);
    m_Healed = drive.m_VendorLogs;
    StartOver(drive);
    EXPECT_EQ(m_Adapter.m_WarningFlags, 0x280U);
    ExpectNothingOf([](CFakeDrive& changed) { changed.m_VendorLogs.erase(0xC5); });
}

TEST_F(CFailedQuery, OfTheWearLogChangesNoState)
{
    const CFakeDrive drive = CFakeDrive(0).Vendor(INTEL).TemperatureLog(60, 20).LegacyLog(60, 90);
    m_Healed = drive.m_VendorLogs;
    StartOver(drive);
    EXPECT_EQ(m_Adapter.m_EANormalized, 90U);
    EXPECT_EQ(m_Adapter.m_HealthStatus, PI::HEALTH_DEGRADED);
    ExpectNothingOf([](CFakeDrive& changed) { changed.m_VendorLogs.erase(0xCA); });
}

TEST_F(CFailedQuery, OfTheNamespaceLeavesTheCapacity)
{
    StartOver(CFakeDrive(0));
    EXPECT_EQ(m_Drive.m_CapacityMiB, 1024U);
    ExpectNothingOf([](CFakeDrive& drive) { drive.m_NamespaceStatuses = {REFUSED}; });
}

TEST_F(CFailedQuery, AfterACycleThatWasSkippedChangesNothingEither)
{
    const CFakeDrive drive =
        CFakeDrive(0).Vendor(INTEL).Warning(0x04).TemperatureLog(104, 20).LegacyLog(60, 90);
    m_Healed = drive.m_VendorLogs;
    StartOver(drive);
    m_Drives.Change(0, [](CFakeDrive& changed) { changed.m_ControllerStatuses = {REFUSED, REFUSED}; });
    Force();
    Force();
    EXPECT_THAT(CollectEvents(), IsEmpty());
    ExpectNothingOf([](CFakeDrive& changed) {
        changed.m_HealthStatuses = {REFUSED};
        changed.m_NamespaceStatuses = {REFUSED};
        changed.m_VendorLogs.clear();
    });
}

TEST_F(CFailedQuery, StillLetsTheNextGoodOneClearTheWarning)
{
    StartOver(CFakeDrive(0).Warning(0x04));
    m_Drives.Change(0, [](CFakeDrive& drive) {
        drive.m_HealthStatuses = {REFUSED};
        drive.Warning(0);
    });
    Force();
    EXPECT_THAT(CollectEvents(), IsEmpty());
    Force();
    EXPECT_THAT(CollectEvents(), ElementsAre(PI::EVENT_WARNINGS_CLEARED));
}

TEST_F(CFailedQuery, OfAnotherDriveInThePlaceShowsNothingOfTheFormer)
{
    StartOver(CFakeDrive(0).Warning(0x04));
    m_Drives.Change(0, [](CFakeDrive& drive) {
        drive.Serial("OTHER");
        drive.m_HealthStatuses = {REFUSED};
        drive.m_NamespaceStatuses = {REFUSED};
    });
    Force();
    EXPECT_THAT(CollectEvents(),
                testing::UnorderedElementsAre(PI::EVENT_ADAPTER_ADDED, PI::EVENT_ADAPTER_REMOVED));
    const CNVMeAdapter& adapter = m_Api.m_Adapters.at(0);
    EXPECT_EQ(adapter.m_SerialNumber, "OTHER");
    EXPECT_EQ(adapter.m_WarningFlags, 0U);
    EXPECT_EQ(adapter.m_Temperature, UNKNOWN_TEMPERATURE);
    EXPECT_EQ(m_Api.m_PhysicalDrives.at(0).m_CapacityMiB, 0U);
}

TEST_F(CFailedQuery, OfADriveThatWasAwayShowsNothingOfItsFormerStay)
{
    StartOver(CFakeDrive(0).Warning(0x04));
    CFakeDrive back = m_Drives.At(0);
    m_Drives.Remove(back.m_DeviceName);
    Force();
    back.m_HealthStatuses = {REFUSED};
    m_Drives.Add(back);
    Force();
    EXPECT_EQ(m_Api.m_Adapters.at(0).m_WarningFlags, 0U);
    Force();
    EXPECT_EQ(m_Api.m_Adapters.at(0).m_WarningFlags, 0x04U);
}

} // namespace
