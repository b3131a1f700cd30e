#include "Host/Built.h"
#include "Host/Commands_Linux/SimulatedProgram.h"
#include "Support/TemporaryFolder.h"

#include <nlohmann/json.hpp>

namespace {

namespace Built = HostTest::Built;
using HostTest::linesOf;
using HostTest::ProgramResult;
using HostTest::runProgram;
using HostTest::simulated;
using nlohmann::json;
using testing::AllOf;
using testing::HasSubstr;
using testing::StartsWith;

class CheckProgram : public testing::Test
{
protected:
    /** Runs it and expects one line, whatever it tells. */
    static std::string lineOf(const std::vector<std::string>& words, int exitCode,
                              const HostTest::Environment& environment = {})
    {
        const ProgramResult result = runProgram(words, environment);
        EXPECT_EQ(result.m_ExitCode, exitCode) << result.m_Output << result.m_Errors;
        EXPECT_EQ(linesOf(result.m_Output).size(), 1U) << result.m_Output;
        EXPECT_THAT(result.m_Output, testing::EndsWith("\n"));
        return result.m_Output;
    }

    std::string fleetOf(const std::string& controllers)
    {
        return m_Folder.Write("fleet.json", R"({"controllers": [)" + controllers + "]}");
    }

    const std::string m_Healthy = R"({"identify": {"vendorId": 1, "model": "M", "serial": "S1"},
        "health": {"temperature": 30}})";
    const std::string m_Degraded = R"({"identify": {"vendorId": 1, "model": "M", "serial": "S2"},
        "health": {"temperature": 30, "criticalWarning": 1}})";
    const std::string m_Critical = R"({"identify": {"vendorId": 1, "model": "M", "serial": "S3"},
        "health": {"temperature": 30, "criticalWarning": 4}})";
    const std::string m_Unread = R"({"identify": {"vendorId": 1, "model": "M", "serial": "S4"}})";
    TestSupport::CTemporaryFolder m_Folder;
};

TEST_F(CheckProgram, EndsWithTheVerdict)
{
    const auto check = [&](const std::string& fleet, int exitCode) {
        return lineOf(simulated({"check"}, fleetOf(fleet)), exitCode);
    };
    EXPECT_THAT(check(m_Healthy, 0),
                StartsWith("OSTREL OK: simulated fleet fleet.json: 1 drive healthy | 'S1_temperature'=30C"));
    EXPECT_THAT(check(m_Healthy + "," + m_Degraded, 1),
                AllOf(StartsWith("OSTREL WARNING: "),
                      HasSubstr("nvme1n1 (S2): Degraded: Available spare below its threshold; 1 of 2")));
    EXPECT_THAT(
        check(m_Unread + "," + m_Critical + "," + m_Degraded, 2),
        AllOf(StartsWith("OSTREL CRITICAL: "), HasSubstr("nvme0n1 (S4): its health log was not read")));
    EXPECT_THAT(check(m_Healthy + "," + m_Unread, 3), StartsWith("OSTREL UNKNOWN: "));
}

TEST_F(CheckProgram, LooksAtTheNamedDriveAlone)
{
    const std::string fleet = fleetOf(m_Healthy + "," + m_Critical);
    for (const char* name : {"S1", "nvme0n1", "nvme0"})
        EXPECT_THAT(lineOf(simulated({"check", name}, fleet), 0),
                    AllOf(HasSubstr(": 1 drive healthy"), testing::Not(HasSubstr("S3_"))));
    EXPECT_THAT(lineOf(simulated({"check", "S3"}, fleet), 2), testing::Not(HasSubstr("S1_")));
}

TEST_F(CheckProgram, CallsUnknownWhateverIsNoVerdict)
{
    const std::string fleet = fleetOf(m_Healthy);
    const auto unknown = [](const std::vector<std::string>& words) {
        const std::string line = lineOf(words, 3);
        EXPECT_THAT(line, StartsWith("OSTREL UNKNOWN: "));
        return line;
    };
    EXPECT_THAT(unknown(simulated({"check"}, fleetOf(""))), HasSubstr("No NVMe drive was found"));
    fleetOf(m_Healthy);
    EXPECT_THAT(unknown(simulated({"check", "nvme99n1"}, fleet)), HasSubstr("There is no object nvme99n1."));
    EXPECT_THAT(unknown(simulated({"check", "plugin"}, fleet)), HasSubstr("plugin is no drive."));
    EXPECT_THAT(unknown({"check", "--colour"}), HasSubstr("There is no option --colour."));
    EXPECT_THAT(unknown({"--colour", "check"}), HasSubstr("--colour"));
    EXPECT_THAT(unknown({"check", "a", "b"}), HasSubstr("b is not expected here"));
    unknown({"check", "--trace", "x"});
    unknown({"--simulate", "/no/such/fleet", "check"});
    unknown(simulated({"check", "--plugin", "/no/such.so"}, fleet));
    unknown(simulated({"check", "--plugin", Built::REFUSING_PLUGIN}, fleet));
    unknown(simulated({"check", "--plugin", Built::THROWING_PLUGIN}, fleet));
    EXPECT_EQ(runProgram({"check", "--help"}).m_ExitCode, 3);
}

TEST_F(CheckProgram, CallsACrashUnknown)
{
    const std::vector<std::string> words =
        simulated({"check", "--plugin", Built::CRASHING_PLUGIN}, fleetOf(m_Healthy));
    const std::string expected = "OSTREL UNKNOWN: The program crashed, or one of its plug-ins did.\n";
    EXPECT_EQ(lineOf(words, 3), expected);
    EXPECT_EQ(lineOf(words, 3, {{"OSTREL_TEST_ABORTS", "1"}}), expected);

    std::vector<std::string> withJson = words;
    withJson.emplace_back("--json");
    const ProgramResult document = runProgram(withJson);
    EXPECT_EQ(document.m_ExitCode, 3);
    EXPECT_EQ(json::parse(document.m_Output)["stateText"], "UNKNOWN");

    // The address sanitizer ends the program with 1 before the system's signal does, the thread sanitizer
    // with 66.
    EXPECT_THAT(
        runProgram(simulated({"list", "--plugin", Built::CRASHING_PLUGIN}, fleetOf(m_Healthy))).m_ExitCode,
        testing::AnyOf(-1, 1, 66))
        << "other commands end as the system has it";
}

TEST_F(CheckProgram, PrintsADocument)
{
    const ProgramResult result =
        runProgram(simulated({"check", "--json"}, fleetOf(m_Healthy + "," + m_Degraded)));
    EXPECT_EQ(result.m_ExitCode, 1);
    const json document = json::parse(result.m_Output);
    EXPECT_EQ(document["simulated"], true);
    EXPECT_EQ(document["state"], 1);
    EXPECT_EQ(document["stateText"], "WARNING");
    EXPECT_EQ(document["drives"][0]["stateText"], "OK");
    EXPECT_EQ(document["drives"][1]["key"], "S2");
    EXPECT_EQ(document["drives"][1]["message"], "Degraded: Available spare below its threshold");
    EXPECT_EQ(document["drives"][1]["drive"]["temperature"], 30.0);

    const ProgramResult failed = runProgram(simulated({"check", "--json", "nvme99n1"}, fleetOf(m_Healthy)));
    EXPECT_EQ(failed.m_ExitCode, 3);
    EXPECT_EQ(failed.m_Errors, "");
    EXPECT_EQ(json::parse(failed.m_Output)["state"], 3);
    EXPECT_THAT(json::parse(failed.m_Output)["error"]["message"].get<std::string>(), HasSubstr("nvme99n1"));
}

TEST_F(CheckProgram, KeepsItsVerdictWhenNobodyReadsIt)
{
    EXPECT_EQ(HostTest::runUnread(simulated({"check"}, fleetOf(m_Critical))).m_ExitCode, 2);
    EXPECT_EQ(HostTest::runUnread({"check", "--colour"}).m_ExitCode, 3);
}

TEST_F(CheckProgram, LetsNoTextOfADriveBreakItsLine)
{
    // A recorded page whose serial number begins with S|'"`, a line end, = and blanks.
    const std::string page = "86800000537c2722600a3d" + std::string(20, '2');
    const std::string line = lineOf(simulated({"check"}, fleetOf(R"({"identify": ")" + page + R"(",
        "health": {"temperature": 30}})")),
                                    0);
    EXPECT_EQ(std::count(line.begin(), line.end(), '|'), 1);
    EXPECT_THAT(line, HasSubstr("| 'S"));
}

} // namespace
