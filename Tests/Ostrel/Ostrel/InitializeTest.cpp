#include "Support/FakeDrives.h"
#include "Support/PluginUnderTest.h"
#include "Support/TraceCapture.h"
#include "Support/TryElsewhere.h"
#include "Support/VirtualClock.h"

#include <PI/ErrorCode.h>
#include <TLX/WaitResult.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <deque>
#include <string>
#include <vector>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using TestSupport::CCapturedLine;
using TestSupport::CFakeDrive;
using TestSupport::CPluginUnderTest;
using TestSupport::CTraceCapture;

constexpr std::uint64_t MODULE = 0x0139'0000'0000'0000;

const std::string UNIT = "Ostrel/Src/Ostrel";
const std::string CLASS = "NAMESPACE_Ostrel::IPLUGINAPI_IMPL::";
const std::string INITIALIZE = CLASS + "Initialize";
const std::string INSERT = CLASS + "InsertObjectToDatabase";
const std::string FILL = CLASS + "SetDatabaseObjectProperties";
const std::string SCAN = "NAMESPACE_Ostrel::NVMeDevices::scan";

const std::vector<CCapturedLine> FOUND_ONE = {
    {2, UNIT, INITIALIZE, "ENTER Initialize()"},
    {2, UNIT, SCAN, "ENTER NVMeDevices::scan()"},
    {16, UNIT, "NAMESPACE_Ostrel::NVMeDevices::addDetected",
     "Detected NVMe device. deviceName: /dev/nvme0n1, driver: nvme"},
    {2, UNIT, SCAN, "LEAVE NVMeDevices::scan() -> ret 1"},
};

const std::vector<CCapturedLine> LOCKED = {
    {16, UNIT, INITIALIZE, "Initialize(): m_NVMeDevices=1"},
    {8, UNIT, INITIALIZE, "Before m_DataLock.Wait (sg)"},
    {8, UNIT, INITIALIZE, "After m_DataLock.Wait (sg)"},
    {2, UNIT, CLASS + "ScanSystem", "ENTER ScanSystem"},
    {16, UNIT, CLASS + "ScanSystem", "ScanSystem, NVMe AdapterCount = 1"},
};

std::vector<CCapturedLine> operator+(std::vector<CCapturedLine> lines, const std::vector<CCapturedLine>& more)
{
    lines.insert(lines.end(), more.begin(), more.end());
    return lines;
}

/** The machine, its clock and a plug-in before its initialisation. */
class Initialize : public testing::Test
{
public:
    std::uint32_t Run()
    {
        testing::internal::CaptureStdout();
        const std::uint32_t result = m_Api.Request(PI::REQUEST_INITIALIZE, 0, m_Data);
        m_Console = testing::internal::GetCapturedStdout();
        return result;
    }

    const std::vector<PI::CAdapterID>& AdapterIDs() const
    {
        return std::get<std::vector<PI::CAdapterID>>(m_Data);
    }

    std::vector<std::string> Published() const
    {
        std::vector<std::string> names;
        for (const auto& adapter : m_Api.m_Adapters)
            names.push_back(adapter.m_DeviceName);
        return names;
    }

    /** Whether another thread can take the lock that guards the lists. */
    bool DataLockIsFree()
    {
        return TestSupport::tryElsewhere(m_Api.m_DataLock) == TLX::Threading::WaitResult::Taken;
    }

    TestSupport::CVirtualClock m_Clock;
    TestSupport::CFakeDrives m_Drives;
    CPluginUnderTest m_Api;
    PI::CRequestData m_Data = std::vector<PI::CAdapterID>();
    std::string m_Console;
};

/** The same, run with one drive and a trace mask. */
class InitializeTrace : public Initialize, public testing::WithParamInterface<std::uint32_t>
{
public:
    /** Runs the request and expects those lines of `all` that the mask shows. */
    void ExpectLines(const std::vector<CCapturedLine>& all)
    {
        const CTraceCapture capture(GetParam());
        (void)Run();
        std::vector<CCapturedLine> shown;
        for (const CCapturedLine& line : all)
            if ((line.m_Level & GetParam()) != 0)
                shown.push_back(line);
        EXPECT_EQ(capture.Lines(), shown);
    }
};

} // namespace

TEST_F(Initialize, PublishesOneAdapterAndOneDriveForEachController)
{
    m_Drives.Add(CFakeDrive(0));
    m_Drives.Add(CFakeDrive(5));
    EXPECT_EQ(Run(), PI::ERR_SUCCESS);
    EXPECT_THAT(Published(), ElementsAre("/dev/nvme0n1", "/dev/nvme5n1"));
    EXPECT_EQ(m_Api.m_PhysicalDrives.size(), 2U);
    EXPECT_THAT(m_Clock.Sleeps(), IsEmpty());
    EXPECT_TRUE(DataLockIsFree());
}

TEST_F(Initialize, GivesThePluginTheFirstIdentifierAndLinksTheTree)
{
    m_Drives.Add(CFakeDrive(0));
    m_Drives.Add(CFakeDrive(1));
    ASSERT_EQ(Run(), PI::ERR_SUCCESS);
    EXPECT_EQ(m_Api.m_Plugin.m_ID, MODULE | 0U);
    EXPECT_EQ(m_Api.m_Plugin.m_Type, PI::TYPE_PLUGIN);
    EXPECT_THAT(m_Api.m_Plugin.m_Parents, IsEmpty());
    EXPECT_THAT(m_Api.m_Plugin.m_Children, ElementsAre(MODULE | 1U, MODULE | 3U));
    for (std::size_t i = 0; i < 2; ++i) {
        EXPECT_EQ(m_Api.m_Adapters[i].m_ID, m_Api.m_Plugin.m_Children[i]);
        EXPECT_THAT(m_Api.m_Adapters[i].m_Parents, ElementsAre(m_Api.m_Plugin.m_ID));
        EXPECT_THAT(m_Api.m_Adapters[i].m_Children, ElementsAre(m_Api.m_PhysicalDrives[i].m_ID));
        EXPECT_THAT(m_Api.m_PhysicalDrives[i].m_Parents, ElementsAre(m_Api.m_Adapters[i].m_ID));
    }
    EXPECT_EQ(m_Api.m_IDCounter, 5U);
}

TEST_F(Initialize, HandsOutWhereTheAdaptersAreWithoutANumber)
{
    m_Drives.Add(CFakeDrive(0)).m_Location = TLXX::CPciLocation{1, 0, 0, 0};
    m_Drives.Add(CFakeDrive(1)).m_Location = TLXX::CPciLocation{0, 0x3B, 2, 1};
    ASSERT_EQ(Run(), PI::ERR_SUCCESS);
    PI::CAdapterID first;
    first.m_Segment = 1;
    PI::CAdapterID second;
    second.m_Bus = 0x3B;
    second.m_Device = 2;
    second.m_Function = 1;
    EXPECT_THAT(AdapterIDs(), ElementsAre(first, second));
    EXPECT_EQ(AdapterIDs()[0].m_AdapterNumber, 0xFFFFFFFFU);
}

TEST_F(Initialize, PrintsTheAdapterCountWhateverTheTraceMask)
{
    m_Drives.Add(CFakeDrive(0));
    m_Drives.Add(CFakeDrive(1));
    const CTraceCapture capture(0);
    EXPECT_EQ(Run(), PI::ERR_SUCCESS);
    EXPECT_EQ(m_Console, "Ostrel:  Initialize:  adapter count is 2\n");
    EXPECT_THAT(capture.Lines(), IsEmpty());
}

TEST_F(Initialize, QueriesControllersFirstThenNamespacesAndHealthByDrive)
{
    m_Drives.Add(CFakeDrive(0));
    m_Drives.Add(CFakeDrive(1));
    ASSERT_EQ(Run(), PI::ERR_SUCCESS);
    EXPECT_THAT(m_Drives.Queries(),
                ElementsAre("controller /dev/nvme0n1", "controller /dev/nvme1n1", "namespace /dev/nvme0n1",
                            "health /dev/nvme0n1", "namespace /dev/nvme1n1", "health /dev/nvme1n1"));
}

TEST_F(Initialize, KeepsADriveThatAnswersOnTheThirdTryAfterTwoPauses)
{
    m_Drives.Add(CFakeDrive(0)).m_ControllerStatuses = {5, 5, 0};
    EXPECT_EQ(Run(), PI::ERR_SUCCESS);
    EXPECT_THAT(Published(), ElementsAre("/dev/nvme0n1"));
    EXPECT_EQ(m_Api.m_Adapters[0].m_SerialNumber, "SN0");
    EXPECT_THAT(m_Clock.Sleeps(), ElementsAre(500U, 500U));
}

TEST_F(Initialize, KeepsADriveThatAnswersOnTheSixthTry)
{
    m_Drives.Add(CFakeDrive(0)).m_ControllerStatuses = {5, 5, 5, 5, 5, 0};
    EXPECT_EQ(Run(), PI::ERR_SUCCESS);
    EXPECT_THAT(m_Clock.Sleeps(), ElementsAre(500U, 500U, 500U, 500U, 500U));
}

TEST_F(Initialize, DropsADriveThatFailsSixTimesAndKeepsTheOrderOfTheOthers)
{
    m_Drives.Add(CFakeDrive(0));
    m_Drives.Add(CFakeDrive(1)).m_ControllerStatuses = std::deque<std::uint32_t>(6, 5);
    m_Drives.Add(CFakeDrive(2));
    m_Drives.Add(CFakeDrive(3));
    EXPECT_EQ(Run(), PI::ERR_SUCCESS);
    EXPECT_THAT(Published(), ElementsAre("/dev/nvme0n1", "/dev/nvme2n1", "/dev/nvme3n1"));
    EXPECT_EQ(m_Clock.Sleeps().size(), 5U);
    EXPECT_TRUE(m_Drives.At(1).m_ControllerStatuses.empty());
    EXPECT_THAT(m_Drives.Queries(), testing::Not(testing::Contains("namespace /dev/nvme1n1")));
}

TEST_F(Initialize, IgnoresFailedNamespaceAndHealthQueries)
{
    CFakeDrive& drive = m_Drives.Add(CFakeDrive(0));
    drive.m_NamespaceStatuses = {5};
    drive.m_HealthStatuses = {5};
    EXPECT_EQ(Run(), PI::ERR_SUCCESS);
    EXPECT_THAT(Published(), ElementsAre("/dev/nvme0n1"));
    EXPECT_EQ(m_Api.m_PhysicalDrives[0].m_CapacityMiB, 0U);
    EXPECT_THAT(m_Clock.Sleeps(), IsEmpty());
}

TEST_F(Initialize, WithoutDrivesFindsNoSupportedHardware)
{
    const CTraceCapture capture(~0U);
    EXPECT_EQ(Run(), PI::ERR_NO_SUPPORTED_HARDWARE);
    EXPECT_EQ(m_Console, "Ostrel:  Initialize:  adapter count is 0\n");
    EXPECT_EQ(capture.Lines(),
              (std::vector<CCapturedLine>{
                  {2, UNIT, INITIALIZE, "ENTER Initialize()"},
                  {2, UNIT, SCAN, "ENTER NVMeDevices::scan()"},
                  {2, UNIT, SCAN, "LEAVE NVMeDevices::scan() -> ret 0"},
                  {2, UNIT, INITIALIZE,
                   "LEAVE Initialize() NVMe devices scan() -> PI::ERR_NO_SUPPORTED_HARDWARE 20001"},
              }));
    EXPECT_TRUE(DataLockIsFree());
}

TEST_F(Initialize, WithoutADriveThatAnswersFindsNoSupportedHardware)
{
    m_Drives.Add(CFakeDrive(0)).m_ControllerStatuses = std::deque<std::uint32_t>(6, 5);
    const CTraceCapture capture(~0U);
    EXPECT_EQ(Run(), PI::ERR_NO_SUPPORTED_HARDWARE);
    EXPECT_EQ(m_Console, "Ostrel:  Initialize:  adapter count is 0\n");
    const std::vector<CCapturedLine> left = {
        {2, UNIT, INITIALIZE,
         "LEAVE Initialize() NVMe devices identifyController() -> PI::ERR_NO_SUPPORTED_HARDWARE 20001"},
    };
    EXPECT_EQ(capture.Lines(), FOUND_ONE + left);
    EXPECT_TRUE(DataLockIsFree());
}

TEST_F(Initialize, WithoutAnAdapterAfterTheScanFindsNoSupportedHardware)
{
    m_Drives.Add(CFakeDrive(0)).Vendor(0x8086).Model("INTEL SSDPF21Q800GB");
    const CTraceCapture capture(~0U);
    EXPECT_EQ(Run(), PI::ERR_NO_SUPPORTED_HARDWARE);
    EXPECT_EQ(m_Console, "Ostrel:  Initialize:  adapter count is 0\n");
    EXPECT_TRUE(AdapterIDs().empty());
    const std::vector<CCapturedLine> left = {
        {16, UNIT, CLASS + "ScanSystem", "ScanSystem, Non-Intel NVMe AdapterCount = 0"},
        {16, UNIT, INITIALIZE, "ScanSystem() ret = 0 m_Adapters=0 m_PhysicalDrives=0"},
        {2, UNIT, INITIALIZE, "LEAVE Initialize() ScanSystem() -> PI::ERR_NO_SUPPORTED_HARDWARE 20001"},
    };
    EXPECT_EQ(capture.Lines(), FOUND_ONE + LOCKED + left);
    EXPECT_TRUE(DataLockIsFree());
}

TEST_P(InitializeTrace, ShowsTheLinesOfTheMaskInTheirOrder)
{
    CFakeDrive& drive = m_Drives.Add(CFakeDrive(0));
    drive.m_Health.DataUnitsRead[0] = 1;
    drive.m_Health.DataUnitsWritten[0] = 2;
    drive.m_Health.Counter128[0] = 3;
    ExpectLines(
        FOUND_ONE + LOCKED +
        std::vector<CCapturedLine>{
            {16, UNIT, CLASS + "ScanAdpater", "ScanSystem, DataUnitsRead = 1"},
            {16, UNIT, CLASS + "ScanAdpater", "ScanSystem, DataUnitsWritten = 2"},
            {16, UNIT, CLASS + "ScanAdpater", "ScanSystem, PowerOnHours = 3"},
            {16, UNIT, CLASS + "ScanAdpater", "ScanSystem, ReserveSpace = 100"},
            {16, UNIT, CLASS + "ScanAdpater", "ScanSystem, WarningThreshold = 10"},
            {16, UNIT, CLASS + "ScanSystem", "ScanSystem, Non-Intel NVMe AdapterCount = 1"},
            {16, UNIT, INITIALIZE, "ScanSystem() ret = 0 m_Adapters=1 m_PhysicalDrives=1"},
            {128, "Ostrel/Src/OstrelPlugin", INSERT, "Plugin NVMe inserted to db."},
            {2, "Ostrel/Src/OstrelAdapter", FILL, "ENTER SetDatabaseObjectProperties (Adapter) (1)"},
            {2, "Ostrel/Src/OstrelAdapter", FILL, "LEAVE SetDatabaseObjectProperties (Adapter) -> 0"},
            {128, "Ostrel/Src/OstrelAdapter", INSERT, "Adapter () (1) inserted to db."},
            {2, "Ostrel/Src/OstrelPhysicalDrive", FILL, "ENTER SetDatabaseObjectProperties (PhysicalDisk)"},
            {128, "Ostrel/Src/OstrelPhysicalDrive", INSERT, "PD (Plain Drive) inserted to db."},
            {2, UNIT, INITIALIZE, "LEAVE Initialize() -> 0"}});
    EXPECT_EQ(m_Console, "Ostrel:  Initialize:  adapter count is 1\n");
}

INSTANTIATE_TEST_SUITE_P(Masks, InitializeTrace, testing::Values(0U, 2U, 8U, 16U, 128U, ~0U));
