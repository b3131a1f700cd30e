#include "Ostrel/ScanContext.h"
#include "ScanFixture.h"
#include "Support/SourceTree.h"
#include "Support/TemporaryFolder.h"

#include <PI/AdapterID.h>
#include <PI/LifeTimeData.h>
#include <PI/StateCode.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

using NAMESPACE_Ostrel::CNVMeAdapter;
using NAMESPACE_Ostrel::UNKNOWN_COUNTER;
using testing::Contains;
using testing::ElementsAre;
using testing::IsEmpty;
using testing::Not;
using TestSupport::CFakeDrive;

namespace {

class CScanAdapter : public TestSupport::CScanFixture
{
protected:
    const CNVMeAdapter& Adapter(CFakeDrive drive)
    {
        ScanOnly(std::move(drive));
        return m_Adapters.at(0);
    }

    /** Scans the existing drives, whether they have changed or not. */
    const CNVMeAdapter& Again()
    {
        Scan(false);
        return m_Adapters.at(0);
    }
};

TEST_F(CScanAdapter, TakesTheDescription)
{
    const CNVMeAdapter& adapter = Adapter(
        CFakeDrive(1).Vendor(SAMSUNG).Model("SAMSUNG MZPLL").Serial("S1").Firmware("FW7").Tag("TAGGED"));
    EXPECT_EQ(adapter.m_Vendor, "SAMSUNG");
    EXPECT_EQ(adapter.m_Model, "SAMSUNG MZPLL");
    EXPECT_EQ(adapter.m_ModelName, "SAMSUNG MZPLL");
    EXPECT_EQ(adapter.m_SerialNumber, "S1");
    EXPECT_EQ(adapter.m_FirmwareRevision, "FW7");
    EXPECT_EQ(adapter.m_Driver, "nvme");
    EXPECT_EQ(adapter.m_DriverVersion, "6.1");
    EXPECT_EQ(adapter.m_DeviceName, "/dev/nvme1n1");
    EXPECT_EQ(adapter.m_VendorTag, "") << "read of Intel drives alone";
}

TEST_F(CScanAdapter, RemovesEveryBackslashFromTheDeviceName)
{
    CFakeDrive drive(1);
    drive.m_DeviceName = R"(\\.\PhysicalDrive2)";
    EXPECT_EQ(Adapter(drive).m_DeviceName, ".PhysicalDrive2");
}

TEST_F(CScanAdapter, NamesTheMakerByItsPciIdentifier)
{
    const std::vector<std::pair<std::uint16_t, std::string>> makers = {
        {0x8086, "INTEL"}, {0x144D, "SAMSUNG"}, {0x1E0F, "KIOXIA"}, {0x1344, "MICRON"}, {0x1D97, ""}};
    m_Fakes.Add(CFakeDrive(1));
    for (const auto& [id, name] : makers) {
        m_Fakes.At(0).Vendor(id);
        EXPECT_EQ(Again().m_Vendor, name);
    }
}

TEST_F(CScanAdapter, ReadsTheVendorTagOfIntelDrives)
{
    m_Fakes.Add(CFakeDrive(1).Vendor(INTEL).Tag("TAGGED"));
    EXPECT_EQ(Again().m_VendorTag, "TAGGED");
    m_Fakes.At(0).Tag("ABCDEFGH");
    EXPECT_EQ(Again().m_VendorTag, "ABCDEFGH") << "no terminator";
    m_Fakes.At(0).Tag(std::string("AB\0CD", 5));
    EXPECT_EQ(Again().m_VendorTag, "AB");
    m_Fakes.At(0).Tag("");
    EXPECT_EQ(Again().m_VendorTag, "");
}

TEST_F(CScanAdapter, MakesHostileTextsSafe)
{
    const CNVMeAdapter& adapter = Adapter(CFakeDrive(1)
                                              .Vendor(INTEL)
                                              .Serial("x');DROP TABLE--\n\x1B[")
                                              .Model("\x01\x7F\xFF%s%n")
                                              .Firmware("12345678")
                                              .Tag("a\tb\xE9"));
    EXPECT_EQ(adapter.m_SerialNumber, "x');DROP TABLE--??[");
    EXPECT_EQ(adapter.m_Model, "???%s%n");
    EXPECT_EQ(adapter.m_FirmwareRevision, "12345678");
    EXPECT_EQ(adapter.m_VendorTag, "a?b?");
}

struct CLocationCase
{
    std::optional<TLXX::CPciLocation> m_Found;
    TLXX::CPciLocation m_Kept;
    std::string m_Text;
};

TEST_F(CScanAdapter, KeepsASegmentForTheVeryFirstSlotAlone)
{
    const std::vector<CLocationCase> cases = {
        {TLXX::CPciLocation{0, 0, 0, 0}, {0, 0, 0, 0}, "PCI:Bus=0&Device=0&Function=0"},
        {TLXX::CPciLocation{1, 0, 0, 0}, {1, 0, 0, 0}, "PCI:Segment=1&Bus=0&Device=0&Function=0"},
        {TLXX::CPciLocation{1, 3, 0, 0}, {0, 3, 0, 0}, "PCI:Bus=3&Device=0&Function=0"},
        {TLXX::CPciLocation{1, 0, 4, 0}, {0, 0, 4, 0}, "PCI:Bus=0&Device=4&Function=0"},
        {TLXX::CPciLocation{1, 0, 0, 5}, {0, 0, 0, 5}, "PCI:Bus=0&Device=0&Function=5"},
        {TLXX::CPciLocation{0, 255, 31, 7}, {0, 255, 31, 7}, "PCI:Bus=255&Device=31&Function=7"},
        {std::nullopt, {0, 0, 0, 0}, "PCI:Bus=0&Device=0&Function=0"},
    };
    m_Fakes.Add(CFakeDrive(1));
    for (const CLocationCase& expected : cases) {
        SCOPED_TRACE(expected.m_Text);
        m_Fakes.At(0).m_Location = expected.m_Found;
        const CNVMeAdapter& adapter = Again();
        EXPECT_EQ(
            (TLXX::CPciLocation{adapter.m_Segment, adapter.m_Bus, adapter.m_Device, adapter.m_Function}),
            expected.m_Kept);
        EXPECT_EQ(adapter.m_Location, expected.m_Text);
        EXPECT_EQ(m_Drives.at(0).m_Location, expected.m_Text + "&ID=0");
    }
}

TEST_F(CScanAdapter, AsksForTheLocationByItsPlaceInTheList)
{
    m_Fakes.Add(CFakeDrive(7));
    m_Fakes.Add(CFakeDrive(4));
    Scan();
    EXPECT_EQ(m_Adapters.at(0).m_Bus, 7);
    EXPECT_EQ(m_Adapters.at(1).m_Bus, 4);
}

TEST_F(CScanAdapter, HasNoNameBeforeTheHostAssignedANumber)
{
    m_Fakes.Add(CFakeDrive(1).Vendor(INTEL));
    EXPECT_EQ(Again().m_Name, "");
    m_Plugin.m_AdapterIDs = {{0, 1, 0, 0, PI::CAdapterID::UNASSIGNED},
                             {0, 2, 0, 0, 1},
                             {1, 1, 0, 0, 1},
                             {0, 1, 1, 0, 1},
                             {0, 1, 0, 1, 1}};
    EXPECT_EQ(Again().m_Name, "");
    m_Plugin.m_AdapterIDs.push_back({0, 1, 0, 0, 0});
    EXPECT_EQ(Again().m_Name, "NVMe Intel PCI Adapter (SN1)");
}

TEST_F(CScanAdapter, IsNamedByMakerAndSerialNumber)
{
    m_Fakes.Add(CFakeDrive(1).Serial("%s%1%"));
    m_Plugin.m_AdapterIDs = {{0, 1, 0, 0, 3}};
    const std::vector<std::pair<std::uint16_t, std::string>> makers = {
        {INTEL, "NVMe Intel PCI Adapter (%s%1%)"},   {SAMSUNG, "NVMe Samsung PCI Adapter (%s%1%)"},
        {KIOXIA, "NVMe Kioxia PCI Adapter (%s%1%)"}, {MICRON, "NVMe Micron PCI Adapter (%s%1%)"},
        {0x1234, "NVMe PCI Adapter (%s%1%)"},
    };
    for (const auto& [id, name] : makers) {
        m_Fakes.At(0).Vendor(id);
        EXPECT_EQ(Again().m_Name, name);
    }
}

TEST_F(CScanAdapter, HasTheHostWideNumberOfItsLocation)
{
    m_Fakes.Add(CFakeDrive(21));
    m_Fakes.Add(CFakeDrive(22));
    Scan();
    for (const CNVMeAdapter& adapter : m_Adapters) {
        PI::CGlobalAdapterID expected("localhost");
        expected.SetBus(adapter.m_Bus);
        expected.GenerateUniqueAdapterNumber();
        EXPECT_EQ(adapter.m_GlobalAdapterNumber, expected.GetGlobalAdapterNumber());
        EXPECT_GE(adapter.m_GlobalAdapterNumber, 1);
    }
    EXPECT_NE(m_Adapters[0].m_GlobalAdapterNumber, m_Adapters[1].m_GlobalAdapterNumber);
}

TEST_F(CScanAdapter, ShowsTheTemperatureInDegrees)
{
    m_Fakes.Add(CFakeDrive(1).Kelvin(315));
    EXPECT_EQ(Again().m_Temperature, 42.0F);
    m_Fakes.At(0).Kelvin(263);
    EXPECT_EQ(Again().m_Temperature, -10.0F);
}

TEST_F(CScanAdapter, TakesTheCountersFromTheirBytes)
{
    CFakeDrive drive(1);
    auto* bytes = reinterpret_cast<std::uint8_t*>(&drive.m_Health);
    const std::vector<std::pair<std::size_t, std::uint64_t>> counters = {
        {32, 0x1'0000'0001}, {40, 1},  {48, 0x1'0000'0002}, {56, 1},     {112, 1120},
        {128, 1280},         {136, 1}, {144, 1440},         {160, 1600}, {168, 1}};
    for (const auto& [offset, value] : counters)
        std::memcpy(bytes + offset, &value, sizeof value);
    bytes[3] = 97;
    bytes[4] = 11;
    const CNVMeAdapter& adapter = Adapter(drive);
    EXPECT_EQ(adapter.m_DataUnitsRead, 0x1'0000'0001ULL);
    EXPECT_EQ(adapter.m_DataUnitsWritten, 0x1'0000'0002ULL);
    EXPECT_EQ(adapter.m_PowerOnHours, 1280U);
    EXPECT_EQ(adapter.m_UnsafeShutdowns, 1600U);
    EXPECT_EQ(adapter.m_ReserveSpace, 97U);
    EXPECT_EQ(adapter.m_WarningThreshold, 11U);
}

TEST_F(CScanAdapter, KeepsTheDefaultsWhenTheHealthPageWasNeverFilled)
{
    CFakeDrive drive(1);
    drive.m_HealthStatuses = {1};
    const CNVMeAdapter& adapter = Adapter(drive);
    EXPECT_EQ(adapter.m_Temperature, -1.0F);
    EXPECT_EQ(adapter.m_UnsafeShutdowns, 0U);
    EXPECT_EQ(adapter.m_DataUnitsRead, UNKNOWN_COUNTER);
    EXPECT_EQ(adapter.m_DataUnitsWritten, UNKNOWN_COUNTER);
    EXPECT_EQ(adapter.m_PowerOnHours, UNKNOWN_COUNTER);
    EXPECT_EQ(adapter.m_ReserveSpace, 100U);
    EXPECT_EQ(adapter.m_WarningThreshold, 10U);
    EXPECT_EQ(adapter.m_HealthStatus, PI::HEALTH_HEALTHY);
    EXPECT_EQ(adapter.m_EndOfLifeDate, "");
    EXPECT_EQ(m_Drives.at(0).m_Temperature, -1.0F);
}

TEST_F(CScanAdapter, LosesTheTemperatureAloneWhereAFilledPageHasNone)
{
    CFakeDrive drive = CFakeDrive(1).Kelvin(0).Warning(0x04);
    drive.m_Health.AvailableSpare = 0;
    drive.m_Health.AvailableSpareThreshold = 5;
    drive.m_Health.DataUnitsRead[0] = 1;
    drive.m_Health.DataUnitsWritten[0] = 2;
    drive.m_Health.Counter128[0] = 3;
    drive.m_Health.Counter160[0] = 4;
    const CNVMeAdapter& adapter = Adapter(drive);
    EXPECT_EQ(adapter.m_Temperature, -1.0F);
    EXPECT_EQ(adapter.m_HealthStatus, PI::HEALTH_CRITICAL);
    EXPECT_EQ(adapter.m_ReserveSpace, 0U);
    EXPECT_EQ(adapter.m_WarningThreshold, 5U);
    EXPECT_EQ(adapter.m_DataUnitsRead, 1U);
    EXPECT_EQ(adapter.m_DataUnitsWritten, 2U);
    EXPECT_EQ(adapter.m_PowerOnHours, 3U);
    EXPECT_EQ(adapter.m_UnsafeShutdowns, 4U);
    EXPECT_NE(adapter.m_EndOfLifeDate, "");
}

TEST_F(CScanAdapter, TheLastTestedWarningBitWinsTheStatus)
{
    const CNVMeAdapter& adapter = Adapter(CFakeDrive(1).Warning(0x09));
    EXPECT_EQ(adapter.m_HealthStatus, PI::HEALTH_CRITICAL);
    EXPECT_THAT(adapter.m_HealthReasons, ElementsAre(PI::REASON_SPARE_LOW, PI::REASON_READ_ONLY));
    EXPECT_EQ(adapter.m_WarningFlags, 0x09U);
}

TEST_F(CScanAdapter, TemperatureStatisticsWidenTheWarningsOfIntelDrives)
{
    m_Fakes.Add(CFakeDrive(1).Vendor(INTEL).Warning(0x02).TemperatureLog(100, 20));
    EXPECT_EQ(Again().m_WarningFlags, 0x242U);
    EXPECT_EQ(m_Adapters.at(0).m_HealthStatus, PI::HEALTH_DEGRADED);
    m_Fakes.At(0).Warning(0).TemperatureLog(84, 0);
    EXPECT_EQ(Again().m_WarningFlags, 0x280U);
    EXPECT_EQ(m_Adapters.at(0).m_HealthStatus, PI::HEALTH_HEALTHY) << "temperature bits alone set no status";
    EXPECT_THAT(m_Adapters.at(0).m_HealthReasons, IsEmpty());
    m_Fakes.At(0).TemperatureLog(0, 200);
    EXPECT_EQ(Again().m_WarningFlags, 0U);
    m_Fakes.At(0).m_VendorLogs.clear();
    EXPECT_EQ(Again().m_WarningFlags, 0U) << "a page that failed is empty";
}

TEST_F(CScanAdapter, AsksOnlyIntelDrivesForVendorPages)
{
    m_Fakes.Add(CFakeDrive(1).Vendor(SAMSUNG).TemperatureLog(200, 0).LegacyLog(1, 1).MarketingLog("Series"));
    m_Fakes.Add(CFakeDrive(2).Vendor(INTEL));
    Scan();
    EXPECT_EQ(m_Adapters.at(0).m_WarningFlags, 0U);
    EXPECT_EQ(m_Adapters.at(0).m_ADNormalized, 0U);
    EXPECT_EQ(m_Adapters.at(0).m_EANormalized, 100U);
    const std::vector<std::string> queries = m_Fakes.Queries();
    for (const char* log : {"log 0xC5", "log 0xCA", "log 0xDD"}) {
        EXPECT_THAT(queries, Not(Contains(std::string(log) + " /dev/nvme1n1")));
        EXPECT_THAT(queries, Contains(std::string(log) + " /dev/nvme2n1").Times(1));
    }
}

TEST_F(CScanAdapter, TakesWearAndSpareOfIntelDrives)
{
    m_Fakes.Add(CFakeDrive(1).Vendor(INTEL).Model("INTEL SSDPED1K375GA").LegacyLog(3, 99));
    EXPECT_EQ(Again().m_ADNormalized, 97U);
    EXPECT_EQ(m_Adapters.at(0).m_EANormalized, 99U);
    EXPECT_EQ(m_Adapters.at(0).m_HealthStatus, PI::HEALTH_DEGRADED);
    EXPECT_EQ(m_Adapters.at(0).m_SpareStatus, PI::WEAR_WARNING);
    m_Fakes.At(0).Model("INTEL SSDPED1K375GB").Warning(0x08);
    EXPECT_EQ(Again().m_ADNormalized, 3U);
    EXPECT_EQ(m_Adapters.at(0).m_HealthStatus, PI::HEALTH_CRITICAL);
    EXPECT_EQ(m_Adapters.at(0).m_SpareStatus, PI::WEAR_CRITICAL);
}

TEST_F(CScanAdapter, RaisesNoAlarmWhenTheLegacyPageFails)
{
    const CNVMeAdapter& adapter = Adapter(CFakeDrive(1).Vendor(INTEL).Model("INTEL SSDPED1K375GA"));
    EXPECT_EQ(adapter.m_ADNormalized, 0U);
    EXPECT_EQ(adapter.m_EANormalized, 100U);
    EXPECT_EQ(adapter.m_SpareStatus, PI::WEAR_OK);
    EXPECT_EQ(adapter.m_HealthStatus, PI::HEALTH_HEALTHY);
}

TEST_F(CScanAdapter, TakesTheRatingFromTheHostsTable)
{
    PI::SetLifeTimeFolder(TestSupport::sourceTree("Tests/Data/Scan"));
    m_Fakes.Add(CFakeDrive(1).Model("INTEL SSDPF2KX038TZ"));
    EXPECT_EQ(Again().m_LifetimeRating, 100U);
    m_Fakes.At(0).Model("INTEL SSDPF2KX019T");
    EXPECT_EQ(Again().m_LifetimeRating, 50U);
    m_Fakes.At(0).Model("Another");
    EXPECT_EQ(Again().m_LifetimeRating, 1U);
    PI::SetLifeTimeFolder({});
}

TEST(CScanContext, TriesATableThatCannotBeReadOnceAScan)
{
    const TestSupport::CTemporaryFolder folder;
    PI::SetLifeTimeFolder(folder.Path());
    const std::vector<PI::CAdapterID> none;
    NAMESPACE_Ostrel::CScanContext scan(none);
    EXPECT_EQ(scan.LifetimeRating("First"), 1U);
    folder.Write("Endurance.txt", "First|100\nSecond|100\n");
    EXPECT_EQ(scan.LifetimeRating("Second"), 1U);
    EXPECT_EQ(NAMESPACE_Ostrel::CScanContext(none).LifetimeRating("Second"), 90U);
    PI::SetLifeTimeFolder({});
}

TEST_F(CScanAdapter, TellsWhenTheDriveIsWornOut)
{
    CFakeDrive drive = CFakeDrive(1).Vendor(INTEL).LegacyLog(60, 100);
    drive.m_Health.Counter128[0] = 1000;
    m_Fakes.Add(drive);
    EXPECT_EQ(Again().m_EndOfLifeDate, "2026-03-04") << "40 percent in 1000 hours leave 1500 hours";
    m_Fakes.At(0).m_Health.Counter128[0] = UNKNOWN_COUNTER;
    EXPECT_EQ(Again().m_EndOfLifeDate, "");
    EXPECT_EQ(m_Adapters.at(0).m_PowerOnHours, UNKNOWN_COUNTER);
}

} // namespace
