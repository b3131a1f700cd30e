#include "Documents/DriveMetrics.h"

#include "Host/Catalogue.h"
#include "Host/Objects.h"
#include "Support/FakeDrives.h"

#include <TLXX/NvmeQuery.h>

#include <gmock/gmock.h>

#include <regex>
#include <set>
#include <sstream>

namespace {

using namespace Host::Cli;
using Host::DriveAnswer;
using HostTest::DriveObjects;
using testing::HasSubstr;
using testing::Not;

class DriveMetrics : public testing::Test
{
protected:
    /** The metrics of the drives, without the lines that begin with '#'. */
    static std::string metricsOf(const std::vector<DriveObjects>& drives,
                                 std::vector<TLXX::CControllerState> states = {},
                                 std::vector<DriveAnswer> answers = {})
    {
        MetricsWriter writer(MetricsFormat::Text);
        addDriveMetrics(writer, Snapshot(Host::ObjectStore(HostTest::topologyOf(drives), std::move(states),
                                                           std::move(answers)),
                                         1, 1));
        std::istringstream whole(std::move(writer).text());
        std::string text;
        for (std::string line; std::getline(whole, line);)
            if (!line.starts_with('#'))
                text += line + '\n';
        return text;
    }

    /** A scripted drive at /dev/nvme0n1 whose pages were read. */
    void read(const std::function<void(TestSupport::CFakeDrive&)>& change)
    {
        change(m_Drives.Add(TestSupport::CFakeDrive(0)));
        TLXX::NVME_SMART_HEALTH_INFORMATION_LOG log{};
        TLXX::NVME_IDENTIFY_CONTROLLER controller{};
        (void)TLXX::NVMeStorageQueryPropertyIdentifyController("/dev/nvme0n1", controller);
        (void)TLXX::NVMeStorageQueryPropertyGetLogPageSMARTHealthInfo("/dev/nvme0n1", log);
    }

    static DriveAnswer answerOf(const std::string& device, bool answering)
    {
        DriveAnswer answer;
        answer.m_DeviceName = device;
        answer.m_Instance = device;
        answer.m_Answering = answering;
        answer.m_LastAnswer = 1'767'225'600'007;
        return answer;
    }

private:
    HostTest::Catalogue m_Catalogue;
    TestSupport::CFakeDrives m_Drives;
};

TEST_F(DriveMetrics, ShowsWhatThePluginReports)
{
    EXPECT_EQ(
        metricsOf({{129, "S1", "/dev/nvme0n1"}}),
        "ostrel_drive_info{drive=\"S1\",device=\"/dev/nvme0n1\",vendor=\"INTEL\","
        "model=\"MODEL-OF-THE-ADAPTER\",serial=\"S1\",pci_address=\"0000:81:1f.1\",firmware=\"FW1\"} 1\n"
        "ostrel_drive_health{drive=\"S1\",state=\"healthy\"} 0\n"
        "ostrel_drive_health{drive=\"S1\",state=\"degraded\"} 0\n"
        "ostrel_drive_health{drive=\"S1\",state=\"critical\"} 1\n"
        "ostrel_drive_capacity_bytes{drive=\"S1\"} 2000398843904\n"
        "ostrel_drive_temperature_celsius{drive=\"S1\",sensor=\"composite\"} 36\n"
        "ostrel_drive_available_spare_ratio{drive=\"S1\"} 0.98\n"
        "ostrel_drive_available_spare_threshold_ratio{drive=\"S1\"} 0.07\n"
        "ostrel_drive_power_on_seconds_total{drive=\"S1\"} 39600\n"
        "ostrel_drive_media_errors_total{drive=\"S1\"} 13\n");
}

TEST_F(DriveMetrics, ShowsWhatTheDriveItselfTells)
{
    read([](TestSupport::CFakeDrive& drive) {
        drive.Warning(0x2A);
        drive.m_Controller.WCTEMP = 343;
        drive.m_Controller.CCTEMP = 358;
        auto& log = drive.m_Health;
        log.PercentageUsed = 129;
        log.DataUnitsRead = {3, 0};
        log.DataUnitsWritten = {36028797018963968, 0};
        log.HostReadCommands = {5, 0};
        log.HostWriteCommands = {6, 0};
        log.ControllerBusyTime = {7, 0};
        log.PowerCycles = {8, 0};
        log.UnsafeShutdowns = {9, 0};
        log.ErrorLogEntries = {10, 0};
        log.WarningTemperatureTime = 11;
        log.CriticalTemperatureTime = 12;
        log.TemperatureSensor[1] = 263;
        log.ThermalTransitions[0] = 13;
        log.ThermalTime[1] = 14;
    });
    const std::string text = metricsOf({{129, "S1", "/dev/nvme0n1"}});
    for (const char* line : {"critical_warning{drive=\"S1\",bit=\"0\",warning=\"spare\"} 0\n",
                             "critical_warning{drive=\"S1\",bit=\"1\",warning=\"temperature\"} 1\n",
                             "critical_warning{drive=\"S1\",bit=\"2\",warning=\"reliability\"} 0\n",
                             "critical_warning{drive=\"S1\",bit=\"3\",warning=\"read-only\"} 1\n",
                             "critical_warning{drive=\"S1\",bit=\"4\",warning=\"memory-backup\"} 0\n",
                             "critical_warning{drive=\"S1\",bit=\"5\",warning=\"persistent-memory\"} 1\n",
                             "endurance_used_ratio{drive=\"S1\"} 1.29\n",
                             "read_bytes_total{drive=\"S1\"} 1536000\n",
                             "written_bytes_total{drive=\"S1\"} 1.8446744073709552e+22\n",
                             "host_commands_total{drive=\"S1\",operation=\"read\"} 5\n",
                             "host_commands_total{drive=\"S1\",operation=\"write\"} 6\n",
                             "busy_seconds_total{drive=\"S1\"} 420\n",
                             "power_cycles_total{drive=\"S1\"} 8\n",
                             "unsafe_shutdowns_total{drive=\"S1\"} 9\n",
                             "error_log_entries_total{drive=\"S1\"} 10\n",
                             "overtemperature_seconds_total{drive=\"S1\",level=\"warning\"} 660\n",
                             "overtemperature_seconds_total{drive=\"S1\",level=\"critical\"} 720\n",
                             "temperature_celsius{drive=\"S1\",sensor=\"2\"} -10\n",
                             "temperature_threshold_celsius{drive=\"S1\",level=\"warning\"} 70\n",
                             "temperature_threshold_celsius{drive=\"S1\",level=\"critical\"} 85\n",
                             "thermal_management_starts_total{drive=\"S1\",level=\"light\"} 13\n",
                             "thermal_management_seconds_total{drive=\"S1\",level=\"heavy\"} 14\n"})
        EXPECT_THAT(text, HasSubstr(std::string("\nostrel_drive_") + line));
    EXPECT_THAT(text, Not(HasSubstr("sensor=\"1\"")));
}

TEST_F(DriveMetrics, ItsInfoHasTheLabelsThatTheFamilyNames)
{
    const std::string text = metricsOf({{129, "S1", "/dev/nvme0n1"}});
    const std::string line = text.substr(0, text.find('\n'));
    std::string labels;
    const std::regex label("([a-z_]+)=\"");
    for (std::sregex_iterator each(line.begin(), line.end(), label), end; each != end; ++each)
        labels += (labels.empty() ? "" : ",") + (*each)[1].str();
    EXPECT_EQ(labels, "drive," + std::string(driveMetricFamilies().front().m_Label));
}

TEST_F(DriveMetrics, ShowsTheLink)
{
    TLXX::CControllerState state;
    state.m_DeviceName = "/dev/nvme0n1";
    state.m_Link = {2.5F, 16.0F, 2, 4, 0};
    const std::string text = metricsOf({{129, "S1", "/dev/nvme0n1"}}, {state});
    for (const char* line : {"speed{drive=\"S1\"} 2.5e+09\n", "speed_max{drive=\"S1\"} 1.6e+10\n",
                             "width{drive=\"S1\"} 2\n", "width_max{drive=\"S1\"} 4\n"})
        EXPECT_THAT(text, HasSubstr(std::string("\nostrel_drive_pcie_link_") + line));
}

TEST_F(DriveMetrics, ShowsHowLongADriveLasts)
{
    read([](TestSupport::CFakeDrive& drive) {
        drive.m_Health.PercentageUsed = 50;
        drive.m_Health.Counter128 = {1000, 0};
    });
    DriveObjects drive(129, "S1", "/dev/nvme0n1");
    EXPECT_THAT(metricsOf({drive}), Not(HasSubstr("remaining_life")));
    drive.m_Adapter.m_Properties.push_back(HostTest::property(PI::PROP_END_OF_LIFE_DATE, 1, "2026-01-01"));
    EXPECT_THAT(metricsOf({drive}),
                HasSubstr("\nostrel_drive_remaining_life_seconds{drive=\"S1\"} 3600000\n"));
}

TEST_F(DriveMetrics, HasNoFigureForALifeThatNothingEnds)
{
    read([](TestSupport::CFakeDrive& drive) { drive.m_Health.Counter128 = {1000, 0}; });
    DriveObjects drive(129, "S1", "/dev/nvme0n1");
    drive.m_Adapter.m_Properties.push_back(HostTest::property(PI::PROP_END_OF_LIFE_DATE, 1, "2126-01-01"));
    EXPECT_THAT(metricsOf({drive}), Not(HasSubstr("remaining_life")));
}

TEST_F(DriveMetrics, LeavesOutWhatIsNotKnown)
{
    read([](TestSupport::CFakeDrive& drive) {
        // A page of ones, as a drive that is gone gives it.
        drive.m_Health.DataUnitsRead = drive.m_Health.PowerCycles = {~0ULL, ~0ULL};
        drive.m_Health.WarningTemperatureTime = ~0U;
        drive.m_Health.TemperatureSensor[0] = 0xFFFF;
    });
    DriveObjects drive(129, "S1", "/dev/nvme0n1");
    for (const std::uint32_t id : {PI::PROP_CAPACITY, PI::PROP_AVAILABLE_SPARE, PI::PROP_SPARE_THRESHOLD,
                                   PI::PROP_HEALTH_STATUS, PI::PROP_MEDIA_ERRORS, PI::PROP_POWER_ON_HOURS})
        drive.remove(id);
    auto& properties = drive.m_Adapter.m_Properties;
    properties.push_back(HostTest::property(PI::PROP_CAPACITY, PI::UNIT_MIB, std::uint64_t{0}));
    properties.push_back(HostTest::property(PI::PROP_AVAILABLE_SPARE, PI::UNIT_PERCENT, 0, 0, 100, 1));
    properties.push_back(HostTest::property(PI::PROP_SPARE_THRESHOLD, PI::UNIT_PERCENT, 0, 1, 100, 1));
    properties.push_back(HostTest::property(PI::PROP_MEDIA_ERRORS, 1, ~std::uint64_t{0}));
    properties.push_back(HostTest::property(PI::PROP_POWER_ON_HOURS, PI::UNIT_HOURS, ~std::uint64_t{0}));
    const std::string text = metricsOf({drive});
    for (const char* name :
         {"capacity", "spare_ratio", "spare_threshold", "health", "media_errors", "power_on", "read_bytes",
          "power_cycles", "overtemperature_seconds_total{drive=\"S1\",level=\"w", "sensor=\"1\"", "drive_up",
          "last_read", "pcie"})
        EXPECT_THAT(text, Not(HasSubstr(name)));
    EXPECT_THAT(text, HasSubstr("unsafe_shutdowns_total{drive=\"S1\"} 0\n"));
}

TEST_F(DriveMetrics, TellsALastSpareBlockFromSpareThatIsNotReported)
{
    DriveObjects drive(129, "S1", "/dev/nvme0n1");
    drive.remove(PI::PROP_AVAILABLE_SPARE);
    drive.m_Adapter.m_Properties.push_back(
        HostTest::property(PI::PROP_AVAILABLE_SPARE, PI::UNIT_PERCENT, 0, 0, 100, 1));
    EXPECT_THAT(metricsOf({drive}), HasSubstr("spare_ratio{drive=\"S1\"} 0\n"));
}

TEST_F(DriveMetrics, ASilentDriveKeepsItsLastFigures)
{
    const std::string text = metricsOf({{129, "S1", "/dev/nvme0n1"}, {130, "S2", "/dev/nvme1n1"}}, {},
                                       {answerOf("/dev/nvme0n1", false), answerOf("/dev/nvme1n1", true)});
    EXPECT_THAT(text, HasSubstr("ostrel_drive_up{drive=\"S1\"} 0\nostrel_drive_up{drive=\"S2\"} 1\n"));
    EXPECT_THAT(text, HasSubstr("ostrel_drive_last_read_timestamp_seconds{drive=\"S1\"} 1767225600.007\n"));
    EXPECT_THAT(text, HasSubstr("ostrel_drive_media_errors_total{drive=\"S1\"} 13\n"));
}

TEST_F(DriveMetrics, ADriveThatNeverAnsweredHasItsNameOnly)
{
    DriveAnswer answer = answerOf("/dev/nvme0n1", false);
    answer.m_LastAnswer.reset();
    answer.m_SerialNumber = "S9";
    EXPECT_EQ(metricsOf({}, {}, {answer}),
              "ostrel_drive_info{drive=\"S9\",device=\"/dev/nvme0n1\",serial=\"S9\"} 1\n"
              "ostrel_drive_up{drive=\"S9\"} 0\n");
}

TEST_F(DriveMetrics, HostileTextsStayInTheirLabels)
{
    const std::string text = metricsOf({{129, "S\"} 1\n\\\xFF", "/dev/nvme0n1"}});
    EXPECT_THAT(text, HasSubstr(R"(ostrel_drive_media_errors_total{drive="S\"} 1\n\\\\xff"} 13)"
                                "\n"));
}

TEST(DriveMetricFamilies, AreEachThereOnceWithHelpAndATypeThatFitsTheName)
{
    std::set<std::string_view> names;
    for (const MetricFamily& family : driveMetricFamilies()) {
        EXPECT_TRUE(names.insert(family.m_Name).second) << family.m_Name;
        EXPECT_TRUE(std::regex_match(std::string(family.m_Name), std::regex("ostrel_drive_[a-z_]+")));
        EXPECT_TRUE(std::regex_match(std::string(family.m_Help), std::regex("[A-Z1][^\\\\\"\n]+[^.]")))
            << family.m_Help;
    }
    EXPECT_GT(names.size(), 25U);
}

} // namespace
