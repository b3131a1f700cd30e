#include "ScanFixture.h"
#include "Support/TraceCapture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <iterator>
#include <string>
#include <vector>

using testing::ElementsAre;
using testing::IsEmpty;
using TestSupport::CCapturedLine;
using TestSupport::CFakeDrive;
using TestSupport::CTraceCapture;

namespace {

class CScanSystem : public TestSupport::CScanFixture
{
protected:
    std::vector<std::string> Serials() const
    {
        std::vector<std::string> serials;
        for (const auto& adapter : m_Adapters)
            serials.push_back(adapter.m_SerialNumber);
        return serials;
    }
};

TEST_F(CScanSystem, EmptiesTheListsWithoutDevices)
{
    m_Adapters.resize(2);
    m_Drives.resize(3);
    Scan();
    EXPECT_THAT(m_Adapters, IsEmpty());
    EXPECT_THAT(m_Drives, IsEmpty());
}

TEST_F(CScanSystem, LinksEachAdapterWithItsDrive)
{
    m_Fakes.Add(CFakeDrive(1));
    m_Fakes.Add(CFakeDrive(2));
    Scan();
    ASSERT_EQ(m_Adapters.size(), 2U);
    for (std::size_t i = 0; i < 2; ++i) {
        EXPECT_EQ(m_Adapters[i].m_Type, PI::TYPE_ADAPTER);
        EXPECT_EQ(m_Drives[i].m_Type, PI::TYPE_PHYSICAL_DRIVE);
        EXPECT_EQ(m_Adapters[i].m_DeviceIndex, i);
        EXPECT_EQ(m_Drives[i].m_DeviceIndex, i);
        EXPECT_THAT(m_Adapters[i].m_Children, ElementsAre(m_Drives[i].m_ID));
        EXPECT_THAT(m_Drives[i].m_Parents, ElementsAre(m_Adapters[i].m_ID));
        EXPECT_THAT(m_Adapters[i].m_Parents, IsEmpty());
        EXPECT_THAT(m_Drives[i].m_Children, IsEmpty());
    }
}

TEST_F(CScanSystem, DrawsIdentifiersFromOneCounter)
{
    m_Plugin.m_IDCounter = 5;
    m_Fakes.Add(CFakeDrive(1));
    m_Fakes.Add(CFakeDrive(2));
    Scan();
    EXPECT_EQ(m_Adapters[0].m_ID, FIRST_ID | 5U);
    EXPECT_EQ(m_Drives[0].m_ID, FIRST_ID | 6U);
    EXPECT_EQ(m_Adapters[1].m_ID, FIRST_ID | 7U);
    EXPECT_EQ(m_Drives[1].m_ID, FIRST_ID | 8U);
    EXPECT_EQ(m_Plugin.m_IDCounter, 9U);
}

TEST_F(CScanSystem, LeavesThePublishedListsAlone)
{
    m_Fakes.Add(CFakeDrive(1));
    Scan();
    EXPECT_THAT(m_Plugin.m_Adapters, IsEmpty());
    EXPECT_THAT(m_Plugin.m_PhysicalDrives, IsEmpty());
}

TEST_F(CScanSystem, ExcludesOneIntelProductLineForGood)
{
    m_Fakes.Add(CFakeDrive(1).Vendor(INTEL).Model("INTEL SSDPF2KX"));
    m_Fakes.Add(CFakeDrive(2).Vendor(INTEL).Model("INTEL SSDPF21Q400GB"));
    m_Fakes.Add(CFakeDrive(3).Vendor(INTEL).Model("INTEL SSDPF21Q"));
    m_Fakes.Add(CFakeDrive(4).Vendor(INTEL).Model("123456SSDPF21Q"));
    m_Fakes.Add(CFakeDrive(5).Vendor(SAMSUNG).Model("INTEL SSDPF21Q400GB"));
    Scan();
    EXPECT_THAT(Serials(), ElementsAre("SN1", "SN5"));
    ASSERT_EQ(m_Plugin.m_NVMeDevices.size(), 2U);
    EXPECT_EQ(m_Plugin.m_NVMeDevices[0].deviceName, "/dev/nvme1n1");
    EXPECT_EQ(m_Plugin.m_NVMeDevices[1].deviceName, "/dev/nvme5n1");
    EXPECT_EQ(m_Adapters[1].m_DeviceIndex, 1U);
}

TEST_F(CScanSystem, KeepsWhatOnlyResemblesTheExcludedLine)
{
    m_Fakes.Add(CFakeDrive(1).Vendor(INTEL).Model(""));
    m_Fakes.Add(CFakeDrive(2).Vendor(INTEL).Model("INTEL"));
    m_Fakes.Add(CFakeDrive(3).Vendor(INTEL).Model("INTEL SSDPF21"));
    m_Fakes.Add(CFakeDrive(4).Vendor(INTEL).Model("INTEL ssdpf21q"));
    m_Fakes.Add(CFakeDrive(5).Vendor(INTEL).Model("SSDPF21Q400GB"));
    m_Fakes.Add(CFakeDrive(6).Vendor(INTEL).Model("INTEL  SSDPF21Q"));
    Scan();
    EXPECT_THAT(Serials(), ElementsAre("SN1", "SN2", "SN3", "SN4", "SN5", "SN6"));
}

TEST_F(CScanSystem, KeepsIdentifiersBySerialNumberOnARescan)
{
    m_Fakes.Add(CFakeDrive(1));
    m_Fakes.Add(CFakeDrive(2));
    Scan();
    m_Adapters[1].m_UpdateCount = 41;
    m_Drives[1].m_UpdateCount = 42;
    Publish();
    const std::uint64_t counter = m_Plugin.m_IDCounter;
    m_Fakes.Remove("/dev/nvme1n1");
    Scan(false);
    ASSERT_EQ(m_Adapters.size(), 1U);
    EXPECT_EQ(m_Adapters[0].m_ID, m_Plugin.m_Adapters[1].m_ID);
    EXPECT_EQ(m_Adapters[0].m_UpdateCount, 41U);
    EXPECT_EQ(m_Drives[0].m_ID, m_Plugin.m_PhysicalDrives[1].m_ID);
    EXPECT_EQ(m_Drives[0].m_UpdateCount, 42U);
    EXPECT_EQ(m_Plugin.m_IDCounter, counter);
    EXPECT_THAT(m_Adapters[0].m_Children, ElementsAre(m_Drives[0].m_ID));
}

TEST_F(CScanSystem, ComparesSerialNumbersByteByByte)
{
    m_Fakes.Add(CFakeDrive(1).Serial("abc"));
    Scan();
    Publish();
    m_Fakes.At(0).Serial("ABC");
    Scan(false);
    EXPECT_NE(m_Adapters[0].m_ID, m_Plugin.m_Adapters[0].m_ID);
    EXPECT_NE(m_Drives[0].m_ID, m_Plugin.m_PhysicalDrives[0].m_ID);
}

TEST_F(CScanSystem, GivesTwinsTheIdentifierOfTheFirstPublished)
{
    m_Fakes.Add(CFakeDrive(1).Serial("TWIN"));
    m_Fakes.Add(CFakeDrive(2).Serial("TWIN"));
    Scan();
    EXPECT_NE(m_Adapters[0].m_ID, m_Adapters[1].m_ID);
    Publish();
    Scan(false);
    ASSERT_EQ(m_Adapters.size(), 2U);
    for (std::size_t i = 0; i < 2; ++i) {
        EXPECT_EQ(m_Adapters[i].m_ID, m_Plugin.m_Adapters[0].m_ID);
        EXPECT_EQ(m_Drives[i].m_ID, m_Plugin.m_PhysicalDrives[0].m_ID);
    }
}

TEST_F(CScanSystem, TakesNewIdentifiersInitiallyWhateverIsPublished)
{
    m_Fakes.Add(CFakeDrive(1));
    Scan();
    m_Adapters[0].m_UpdateCount = 9;
    Publish();
    Scan(true);
    EXPECT_EQ(m_Adapters[0].m_ID, FIRST_ID | 2U);
    EXPECT_EQ(m_Drives[0].m_ID, FIRST_ID | 3U);
    EXPECT_EQ(m_Adapters[0].m_UpdateCount, 0U);
}

TEST_F(CScanSystem, FillsThePublishedListsThemselvesInitially)
{
    m_Fakes.Add(CFakeDrive(1));
    m_Plugin.m_NVMeDevices.scan();
    m_Plugin.m_Adapters.resize(1);
    EXPECT_EQ(m_Plugin.ScanSystem(m_Plugin.m_Adapters, m_Plugin.m_PhysicalDrives, true), 0U);
    EXPECT_EQ(m_Plugin.m_Adapters.size(), 1U);
    EXPECT_EQ(m_Plugin.m_PhysicalDrives.size(), 1U);
}

class CScanTrace : public CScanSystem
{
protected:
    CScanTrace()
    {
        CFakeDrive& intel = m_Fakes.Add(CFakeDrive(1)
                                            .Vendor(INTEL)
                                            .Model("INTEL SSDPED1K375GA")
                                            .TemperatureLog(80, 0)
                                            .LegacyLog(3, 98)
                                            .MarketingLog("Family Series"));
        intel.m_Health.DataUnitsRead[0] = 0x8000000000000001ULL;
        intel.m_Health.DataUnitsWritten[0] = 12;
        intel.m_Health.Counter128[0] = 13;
        m_Fakes.Add(CFakeDrive(2).Vendor(INTEL).Model("INTEL SSDPF21Q"));
        m_Fakes.Add(CFakeDrive(3));
    }

    static CCapturedLine Line(std::uint32_t level, const char* function, const char* text)
    {
        return {level, "Ostrel/Src/Ostrel", std::string("NAMESPACE_Ostrel::IPLUGINAPI_IMPL::") + function,
                text};
    }

    /** The lines of a worker's scan before anything is known. */
    static std::vector<CCapturedLine> Expected()
    {
        return {
            Line(2, "ScanSystem", "ENTER ScanSystem"),
            Line(16, "ScanSystem", "ScanSystem, NVMe AdapterCount = 3"),
            Line(16, "ScanAdpater",
                 "ScanSystem, getVendorSpecificLogPage: INTEL_TEMPERATURE_STATISTIC_LOG_PAGE for "
                 "/dev/nvme1n1 returned: 1"),
            Line(16, "ScanAdpater",
                 "ScanSystem, getVendorSpecificLogPage: INTEL_LEGACY_SMART_LOG_PAGE for /dev/nvme1n1 "
                 "returned: 1"),
            Line(16, "ScanAdpater", "ScanSystem, AD Normalized value = 3"),
            Line(16, "ScanAdpater", "ScanSystem, EA Normalized value = 98"),
            Line(16, "ScanAdpater", "ScanSystem, DataUnitsRead = 9223372036854775809"),
            Line(16, "ScanAdpater", "ScanSystem, DataUnitsWritten = 12"),
            Line(16, "ScanAdpater", "ScanSystem, PowerOnHours = 13"),
            Line(16, "ScanAdpater", "ScanSystem, ReserveSpace = 100"),
            Line(16, "ScanAdpater", "ScanSystem, WarningThreshold = 10"),
            Line(16, "ScanPhysicalDrive",
                 "ScanSystem, getVendorSpecificLogPage: INTEL_DRIVE_MARKETING_LOG_PAGE for /dev/nvme1n1 "
                 "returned: 1"),
            Line(2, "ScanPhysicalDrive", "The drive is not found yet!"),
            Line(16, "ScanAdpater", "ScanSystem, DataUnitsRead = 0"),
            Line(16, "ScanAdpater", "ScanSystem, DataUnitsWritten = 0"),
            Line(16, "ScanAdpater", "ScanSystem, PowerOnHours = 0"),
            Line(16, "ScanAdpater", "ScanSystem, ReserveSpace = 100"),
            Line(16, "ScanAdpater", "ScanSystem, WarningThreshold = 10"),
            Line(2, "ScanPhysicalDrive", "The drive is not found yet!"),
            Line(16, "ScanSystem", "ScanSystem, Non-Intel NVMe AdapterCount = 2"),
        };
    }

    /** The lines that the scan alone writes; enumeration writes its own. */
    std::vector<CCapturedLine> Trace(std::uint32_t mask, bool initial)
    {
        Scan();
        m_Plugin.m_NVMeDevices.scan();
        for (NAMESPACE_Ostrel::NVMeDevice& device : m_Plugin.m_NVMeDevices) {
            device.queryIdentifyController();
            device.querySmartHealthLog();
        }
        const CTraceCapture capture(mask);
        EXPECT_EQ(m_Plugin.ScanSystem(m_Adapters, m_Drives, initial), 0U);
        return capture.Lines();
    }
};

TEST_F(CScanTrace, TellsEverythingAtEveryLevel)
{
    EXPECT_EQ(Trace(0xFFFFFFFF, false), Expected());
}

TEST_F(CScanTrace, TellsOfALevelWhatIsItsOwn)
{
    for (const std::uint32_t level : {2U, 16U}) {
        std::vector<CCapturedLine> expected = Expected();
        std::erase_if(expected, [&](const CCapturedLine& line) { return line.m_Level != level; });
        EXPECT_EQ(Trace(level, false), expected) << level;
    }
}

TEST_F(CScanTrace, IsSilentAtTheOtherLevels)
{
    for (const std::uint32_t mask : {0U, 4U, 8U, 128U})
        EXPECT_THAT(Trace(mask, false), IsEmpty()) << mask;
}

TEST_F(CScanTrace, MissesNoDriveInitiallyNorOneThatIsPublished)
{
    std::vector<CCapturedLine> expected = Expected();
    std::erase_if(expected,
                  [](const CCapturedLine& line) { return line.m_Text == "The drive is not found yet!"; });
    EXPECT_EQ(Trace(0xFFFFFFFF, true), expected);
    Publish();
    EXPECT_EQ(Trace(0xFFFFFFFF, false), expected);
}

TEST_F(CScanTrace, TellsTheDefaultsOfVendorPagesThatCouldNotBeRead)
{
    m_Fakes.At(0).m_VendorLogs.clear();
    std::vector<CCapturedLine> expected = Expected();
    std::erase_if(expected,
                  [](const CCapturedLine& line) { return line.m_Text.find("LogPage") != std::string::npos; });
    expected[2].m_Text = "ScanSystem, AD Normalized value = 0";
    expected[3].m_Text = "ScanSystem, EA Normalized value = 100";
    EXPECT_EQ(Trace(0xFFFFFFFF, false), expected);
}

TEST_F(CScanTrace, TellsTheWearAsThePageHasItWhereTheRecordInvertsIt)
{
    m_Fakes.At(0).Model("INTEL SSDPED1K375GA");
    EXPECT_EQ(Trace(0xFFFFFFFF, false), Expected());
    EXPECT_EQ(m_Adapters.at(0).m_ADNormalized, 97U);
}

TEST_F(CScanTrace, TellsTheDefaultsOfAHealthPageThatWasNeverFilled)
{
    m_Fakes.At(2).m_HealthStatuses.assign(8, 1);
    std::vector<CCapturedLine> expected = Expected();
    for (std::size_t line = 13; line < 16; ++line) {
        std::string& text = expected[line].m_Text;
        text.replace(text.find("= 0"), 3, "= 18446744073709551615");
    }
    EXPECT_EQ(Trace(0xFFFFFFFF, false), expected);
}

} // namespace
