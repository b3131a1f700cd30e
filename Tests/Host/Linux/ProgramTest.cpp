#include "Core/Text.h"
#include "Host/Built.h"
#include "Host/Linux/RunProgram.h"
#include "Support/TemporaryFolder.h"

#include <nlohmann/json.hpp>

#include <fstream>

namespace {

namespace Built = HostTest::Built;
using HostTest::ProgramResult;
using HostTest::runOnTerminal;
using HostTest::runProgram;
using nlohmann::json;
using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

const std::string DEMO = std::string(Built::SHARE) + "/DemoFleet.json";

std::vector<std::string> simulated(std::vector<std::string> words, const std::string& fleet = DEMO)
{
    words.insert(words.begin(), {"--simulate", fleet});
    return words;
}

std::vector<std::string> linesOf(const std::string& text)
{
    std::vector<std::string> lines;
    for (std::size_t start = 0; start < text.size();) {
        const std::size_t end = std::min(text.find('\n', start), text.size());
        lines.push_back(text.substr(start, end - start));
        start = end + 1;
    }
    return lines;
}

TEST(Program, ListsTheFleetAndMarksItAsSimulated)
{
    const ProgramResult result = runProgram(simulated({"list"}));
    EXPECT_EQ(result.m_ExitCode, 0) << result.m_Errors;
    const std::vector<std::string> lines = linesOf(result.m_Output);
    ASSERT_EQ(lines.size(), 9U);
    EXPECT_EQ(lines[0], "Simulated fleet: DemoFleet.json");
    EXPECT_THAT(lines[1], StartsWith("Device   Vendor   Model"));
    EXPECT_THAT(lines[3],
                AllOf(HasSubstr("PHKS7500004Z375AGN"), HasSubstr("41 \u00b0C"), HasSubstr("Degraded")));
    EXPECT_THAT(lines[7], AllOf(StartsWith("nvme5n1  -  "), HasSubstr("1.00 GiB"), HasSubstr("Healthy")));
    EXPECT_THAT(lines[8],
                HasSubstr("Critical: Temperature outside its limits; Available spare below its threshold; "
                          "Reliability degraded; Media is read-only"));
    EXPECT_THAT(result.m_Output, Not(HasSubstr("\033")));
}

TEST(Program, KeepsThePluginsConsoleLineOutOfTheResults)
{
    const ProgramResult result = runProgram(simulated({"list"}));
    EXPECT_THAT(result.m_Output, Not(HasSubstr("adapter count")));
    EXPECT_EQ(result.m_Errors, "Ostrel:  Initialize:  adapter count is 7\n");
}

TEST(Program, ListsAsJson)
{
    const ProgramResult result = runProgram(simulated({"list", "--json"}));
    EXPECT_EQ(result.m_ExitCode, 0);
    const json document = json::parse(result.m_Output);
    EXPECT_EQ(document["simulated"], true);
    ASSERT_EQ(document["drives"].size(), 7U);
    const json& intel = document["drives"][0];
    EXPECT_EQ(intel["device"], "/dev/nvme0n1");
    EXPECT_EQ(intel["vendor"], "INTEL");
    EXPECT_EQ(intel["model"], "SSDPE2KX020T8");
    EXPECT_EQ(intel["capacityMiB"], 2000398934016ULL >> 20U);
    EXPECT_EQ(intel["temperature"], 36.0);
    EXPECT_EQ(intel["pciAddress"], "0000:01:00.0");
    EXPECT_EQ(intel["powerOnHours"], 21930);
    EXPECT_EQ(intel["driverVersion"], "1.0");
    EXPECT_FALSE(intel.contains("reasons"));
    EXPECT_FALSE(document["drives"][5].contains("vendor"));
    EXPECT_EQ(document["drives"][6]["reasonCodes"], json({40459, 40460, 40487, 40452}));
    EXPECT_EQ(document["drives"][6]["healthCode"], 40095);
}

TEST(Program, ShowsTheTopologyAsJson)
{
    const ProgramResult result = runProgram(simulated({"topology", "--json"}));
    EXPECT_EQ(result.m_ExitCode, 0);
    const json document = json::parse(result.m_Output);
    EXPECT_EQ(document["simulated"], true);
    const json& objects = document["objects"];
    ASSERT_EQ(objects.size(), 15U);
    EXPECT_EQ(objects[0]["id"], "0x0139000000000000");
    EXPECT_EQ(objects[0]["type"], 19006);
    EXPECT_EQ(objects[0]["children"].size(), 7U);
    EXPECT_EQ(objects[0]["operations"], json::parse(R"([{"id": 50002}])"));
    EXPECT_EQ(objects[1]["type"], 19038);
    EXPECT_EQ(objects[1]["parents"], json::parse(R"(["0x0139000000000000"])"));
    EXPECT_EQ(objects[8]["type"], 19018);
    EXPECT_EQ(objects[8]["parents"][0], objects[1]["id"]);
    const json& interval = objects[0]["properties"][4];
    EXPECT_EQ(interval, json::parse(R"({"id": 30005, "caption": "Poll interval", "value": 30, "text": "30 s",
        "unit": 21007, "unitText": "s", "settable": true, "minimum": 2, "maximum": 255, "step": 1})"));
}

TEST(Program, ShowsTheTopologyAsATree)
{
    const ProgramResult result = runProgram(simulated({"topology"}));
    EXPECT_EQ(result.m_ExitCode, 0);
    EXPECT_THAT(result.m_Output,
                StartsWith("Simulated fleet: DemoFleet.json\nPlug-in NVMe-Plugin  0x0139000000000000\n"));
    EXPECT_THAT(result.m_Output, HasSubstr("\n  Adapter MICRON MTFDKCC1T9TFR  0x"));
    EXPECT_THAT(result.m_Output, HasSubstr("\n    Physical drive MICRON 7450 MTFDKCC1T9TFR  0x"));
    EXPECT_THAT(result.m_Output, HasSubstr("\n    Physical drive Intel SSD DC P4510 SSDPE2KX020T8  0x"));
}

TEST(Program, ShowsObjectsAndProperties)
{
    EXPECT_EQ(runProgram(simulated({"show", "nvme0n1", "name"})).m_Output,
              "Simulated fleet: DemoFleet.json\nIntel SSD DC P4510 SSDPE2KX020T8\n");
    EXPECT_EQ(runProgram(simulated({"show", "nvme2n1", "Temperature"})).m_Output,
              "Simulated fleet: DemoFleet.json\n33 \u00b0C\n");
    EXPECT_EQ(
        json::parse(
            runProgram(simulated({"show", "DEMO-0006", "30059", "--json"})).m_Output)["property"]["value"],
        1024);
    const json both = json::parse(runProgram(simulated({"show", "/dev/nvme0n1", "--json"})).m_Output);
    EXPECT_EQ(both["objects"].size(), 2U);
    const json one =
        json::parse(runProgram(simulated({"show", "PCI:Bus=1&Device=0&Function=0&ID=0", "--json"})).m_Output);
    ASSERT_EQ(one["objects"].size(), 1U);
    EXPECT_EQ(one["objects"][0]["type"], 19018);
    EXPECT_THAT(runProgram(simulated({"show", "0x0139000000000000"})).m_Output,
                HasSubstr("Poll interval  30 s\n"));
}

TEST(Program, SaysWhatThereIsWhenANameIsUnknown)
{
    const ProgramResult object = runProgram(simulated({"show", "nvme99n1"}));
    EXPECT_EQ(object.m_ExitCode, 2);
    EXPECT_THAT(object.m_Output, IsEmpty());
    EXPECT_THAT(object.m_Errors, AllOf(HasSubstr("There is no object \"nvme99n1\""), HasSubstr("DEMO-0006")));
    const ProgramResult property = runProgram(simulated({"show", "nvme0n1", "colour", "--json"}));
    EXPECT_EQ(property.m_ExitCode, 2);
    EXPECT_THAT(json::parse(property.m_Output)["error"]["message"].get<std::string>(),
                HasSubstr("30017  Health status"));
}

TEST(Program, ReportsMissingHardwareWithItsRequest)
{
    const TestSupport::CTemporaryFolder folder;
    const std::string fleet = folder.Write("empty.json", R"({"controllers": []})");
    const ProgramResult text = runProgram(simulated({"list"}, fleet));
    EXPECT_EQ(text.m_ExitCode, 3);
    EXPECT_THAT(text.m_Output, IsEmpty());
    EXPECT_THAT(text.m_Errors,
                HasSubstr("request 1 (Initialize) failed with 20001 ERR_NO_SUPPORTED_HARDWARE"));
    const ProgramResult document = runProgram(simulated({"--json", "topology"}, fleet));
    EXPECT_EQ(document.m_ExitCode, 3);
    const json error = json::parse(document.m_Output)["error"];
    EXPECT_EQ(error["request"], 1);
    EXPECT_EQ(error["code"], 20001);
    EXPECT_EQ(error["name"], "ERR_NO_SUPPORTED_HARDWARE");
    EXPECT_TRUE(error["message"].is_string());
}

TEST(Program, ReportsAFailedRequest)
{
    const ProgramResult result =
        runProgram(simulated({"list", "--json", "--plugin", Built::REFUSING_PLUGIN}));
    EXPECT_EQ(result.m_ExitCode, 1);
    EXPECT_EQ(json::parse(result.m_Output)["error"]["request"], 4);
    EXPECT_EQ(json::parse(result.m_Output)["error"]["name"], "ERR_GENERAL_FAILURE");
    EXPECT_THAT(result.m_Errors, HasSubstr("request 4 (GetTopology) failed with 20000 ERR_GENERAL_FAILURE"));
}

TEST(Program, ReportsAModelThatThePluginCannotCutAsAFailedRequest)
{
    const TestSupport::CTemporaryFolder folder;
    const std::string fleet = folder.Write(
        "fleet.json",
        R"({"controllers": [{"identify": {"vendorId": "0x8086", "model": "INTEL", "serial": "S"}}]})");
    EXPECT_EQ(runProgram(simulated({"list"}, fleet)).m_ExitCode, 1);
    const ProgramResult doctor = runProgram(simulated({"doctor"}, fleet));
    EXPECT_EQ(doctor.m_ExitCode, 1);
    EXPECT_THAT(doctor.m_Output,
                HasSubstr("PROBLEM  /dev/nvme0n1: its model is \"INTEL\", the maker's name alone"));
}

TEST(Program, ShowsADriveWhoseHealthLogWasNotReadAsUnknown)
{
    const TestSupport::CTemporaryFolder folder;
    const std::string fleet = folder.Write(
        "fleet.json", R"({"controllers": [{"identify": {"vendorId": 1, "model": "M", "serial": "S"}}]})");
    EXPECT_THAT(runProgram(simulated({"list"}, fleet)).m_Output, HasSubstr(" Unknown\n"));
    EXPECT_THAT(runOnTerminal(simulated({"list"}, fleet), 80).m_Output, HasSubstr("  Unknown\n"));
    const json drive = json::parse(runProgram(simulated({"list", "--json"}, fleet)).m_Output)["drives"][0];
    EXPECT_EQ(drive["health"], "Unknown");
    EXPECT_FALSE(drive.contains("healthCode"));
    EXPECT_THAT(runProgram(simulated({"doctor"}, fleet)).m_Output, HasSubstr(": 1 adapter, 3 objects\n"));
}

TEST(Program, AFleetFilesKeysForgeNoLines)
{
    const TestSupport::CTemporaryFolder folder;
    const std::string fleet = folder.Write("fleet.json", R"({"a\nostrel: all is well": 1})");
    const ProgramResult result = runProgram(simulated({"list"}, fleet));
    EXPECT_EQ(result.m_ExitCode, 2);
    EXPECT_EQ(linesOf(result.m_Errors).size(), 1U) << result.m_Errors;
}

TEST(Program, ShowsOtherPluginsBesideItsOwn)
{
    const TestSupport::CTemporaryFolder folder;
    const std::string empty = folder.Write("empty.json", R"({"controllers": []})");
    const std::vector<std::string> words = {"--plugin", Built::SECOND_PLUGIN, "topology", "--json"};
    const ProgramResult both = runProgram(simulated(words));
    EXPECT_EQ(both.m_ExitCode, 0) << both.m_Errors;
    EXPECT_EQ(json::parse(both.m_Output)["objects"].size(), 16U);
    EXPECT_EQ(json::parse(both.m_Output)["objects"][15]["id"], "0x1267000000000000");
    const ProgramResult alone = runProgram(simulated(words, empty));
    EXPECT_EQ(alone.m_ExitCode, 0) << alone.m_Errors;
    EXPECT_EQ(json::parse(alone.m_Output)["objects"].size(), 1U);

    const ProgramResult doctor = runProgram(simulated({"doctor", "--plugin", Built::SECOND_PLUGIN}, empty));
    EXPECT_THAT(doctor.m_Output, AllOf(HasSubstr(", module 313\n"), HasSubstr(", module 4711\n"),
                                       HasSubstr("inventory: 0 adapters, 1 object\n")));
    const ProgramResult twice = runProgram(simulated({"list", "--plugin", Built::PLUGIN}));
    EXPECT_EQ(twice.m_ExitCode, 2);
    EXPECT_THAT(twice.m_Errors, HasSubstr("both have the module number 313"));
}

TEST(Program, TracesEachPluginUnderItsOwnMask)
{
    const ProgramResult traced = runProgram(
        simulated({"list", "--plugin", Built::SECOND_PLUGIN, "--trace", "0x12", "--trace", "313=4"}));
    EXPECT_THAT(traced.m_Errors, AllOf(HasSubstr(" Second 2 Second Request:"), HasSubstr(" Ostrel 4 "),
                                       Not(HasSubstr(" Ostrel 2 ")), Not(HasSubstr(" Ostrel 16 "))));
}

TEST(Program, RefusesAPluginOfAnotherVersion)
{
    const ProgramResult result = runProgram({"list", "--plugin", Built::WRONG_VERSION_PLUGIN});
    EXPECT_EQ(result.m_ExitCode, 1);
    EXPECT_THAT(result.m_Errors, HasSubstr("speaks interface version 3, this program version 2"));
}

TEST(Program, RefusesWrongUsage)
{
    EXPECT_EQ(runProgram({}).m_ExitCode, 2);
    EXPECT_EQ(runProgram({"lst"}).m_ExitCode, 2);
    const ProgramResult document = runProgram({"lst", "--json"});
    EXPECT_EQ(document.m_ExitCode, 2);
    EXPECT_TRUE(json::parse(document.m_Output)["error"].contains("message"));
    EXPECT_FALSE(json::parse(document.m_Output)["error"].contains("request"));
}

TEST(Program, RefusesAWrongFleetFile)
{
    const TestSupport::CTemporaryFolder folder;
    const std::string fleet =
        folder.Write("fleet.json", R"({"controllers": [{"health": {"temprature": 3}}]})");
    for (const char* command : {"list", "doctor"}) {
        const ProgramResult result = runProgram(simulated({command}, fleet));
        EXPECT_EQ(result.m_ExitCode, 2);
        EXPECT_THAT(result.m_Output, IsEmpty());
        EXPECT_THAT(result.m_Errors, AllOf(HasSubstr(fleet), HasSubstr("/controllers/0/health/temprature")));
    }
}

TEST(Program, PrintsHelpAndVersionToStandardOutput)
{
    for (const std::vector<std::string>& words : {std::vector<std::string>{"--help"},
                                                  {"list", "--help"},
                                                  {"topology", "--help"},
                                                  {"show", "--help"},
                                                  {"set", "--help"},
                                                  {"watch", "--help"},
                                                  {"doctor", "--help"}}) {
        const ProgramResult result = runProgram(words);
        EXPECT_EQ(result.m_ExitCode, 0);
        EXPECT_THAT(result.m_Output, AllOf(HasSubstr("Usage: ostrel"), HasSubstr("Examples:")));
        EXPECT_THAT(result.m_Errors, IsEmpty());
    }
    EXPECT_EQ(runProgram({"--version"}).m_Output, "ostrel 7.16.3\n");
}

TEST(Program, TracesToStandardErrorOrAFile)
{
    const ProgramResult traced = runProgram(simulated({"list", "--trace", "0x2"}));
    EXPECT_THAT(traced.m_Errors, HasSubstr("ENTER Initialize()"));
    EXPECT_THAT(traced.m_Output, Not(HasSubstr("ENTER")));

    const TestSupport::CTemporaryFolder folder;
    const std::filesystem::path file = folder.Path() / "trace.log";
    const ProgramResult filed = runProgram(simulated({"list", "--trace", "2", "--trace-file", file}));
    EXPECT_THAT(filed.m_Errors, Not(HasSubstr("ENTER")));
    std::ifstream stream(file);
    const std::string text((std::istreambuf_iterator<char>(stream)), {});
    EXPECT_THAT(text, HasSubstr("LEAVE GetTopology"));

    const ProgramResult refused =
        runProgram(simulated({"list", "--trace", "2", "--trace-file", folder.Path() / "no" / "trace.log"}));
    EXPECT_EQ(refused.m_ExitCode, 2);
    EXPECT_THAT(refused.m_Errors, HasSubstr("trace.log cannot be written: No such file or directory"));
}

TEST(Program, ReadsSettingsFromTheDataFolderAndLeavesNothingBehind)
{
    const TestSupport::CTemporaryFolder folder;
    const TestSupport::CTemporaryFolder home;
    folder.Write("Ostrel.ini", "PollInterval=45\n");
    const HostTest::Environment environment = {{"HOME", home.Path()},
                                               {"XDG_STATE_HOME", home.Path() / "state"}};
    EXPECT_THAT(runProgram(simulated({"show", "plugin", "Poll interval", "--data", folder.Path()})).m_Output,
                HasSubstr("45 s"));
    for (const std::vector<std::string>& words :
         {std::vector<std::string>{"list"}, {"topology"}, {"show", "plugin"}, {"doctor"}})
        EXPECT_EQ(runProgram(simulated(words), environment).m_ExitCode, 0);
    EXPECT_TRUE(std::filesystem::is_empty(home.Path()));
}

TEST(Program, SaysWhenResultsCannotBeWritten)
{
    const std::string command = std::string(Built::PROGRAM) + " --version >/dev/full 2>/dev/null";
    const int status = std::system(command.c_str());
    EXPECT_EQ(WEXITSTATUS(status), 1);
}

TEST(Doctor, FindsNothingWrongWithTheDemonstration)
{
    const ProgramResult result = runProgram(simulated({"doctor"}));
    EXPECT_EQ(result.m_ExitCode, 0) << result.m_Output;
    EXPECT_THAT(result.m_Output, StartsWith("Simulated fleet: "));
    EXPECT_THAT(result.m_Output, HasSubstr("OK       plug-in: "));
    EXPECT_THAT(result.m_Output, HasSubstr("OK       inventory: 7 adapters, 15 objects\n"));
    EXPECT_THAT(result.m_Output, Not(HasSubstr("PROBLEM")));
}

TEST(Doctor, WorksWithoutDrivesAndWithoutAPlugin)
{
    const TestSupport::CTemporaryFolder folder;
    const std::string fleet = folder.Write("empty.json", R"({"controllers": []})");
    const ProgramResult empty = runProgram(simulated({"doctor", "--json"}, fleet));
    EXPECT_EQ(empty.m_ExitCode, 3);
    EXPECT_EQ(json::parse(empty.m_Output)["simulated"], true);
    EXPECT_EQ(json::parse(empty.m_Output)["checks"].back()["subject"], "controllers");
    EXPECT_EQ(json::parse(empty.m_Output)["checks"].back()["result"], "problem");

    const ProgramResult broken = runProgram(simulated({"doctor", "--plugin", "/no/such.so"}));
    EXPECT_EQ(broken.m_ExitCode, 1);
    EXPECT_THAT(broken.m_Output,
                AllOf(HasSubstr("PROBLEM  plug-in: "), HasSubstr("OK       /dev/nvme0n1: ")));
}

TEST(Doctor, NamesDrivesThatDoNotAnswerOrAnswerNonsense)
{
    const TestSupport::CTemporaryFolder folder;
    const std::string fleet = folder.Write("fleet.json", R"({"controllers": [
        {"location": "0000:01:00.0"},
        {"location": "0000:02:00.0", "identify": {"vendorId": 1, "model": "M", "serial": "S"}},
        {"location": "0000:03:00.0", "identify": {"vendorId": 1, "model": "M", "serial": "T"},
         "namespace": {"blocks": 0}, "health": {"temperature": 20}}]})");
    const ProgramResult result = runProgram(simulated({"doctor"}, fleet));
    EXPECT_EQ(result.m_ExitCode, 1);
    EXPECT_THAT(
        result.m_Output,
        AllOf(HasSubstr("PROBLEM  /dev/nvme0n1: does not say what it is: the drive answered with status"),
              HasSubstr("NOTE     /dev/nvme1n1: sits at 0000:02:00.0, but is shown at PCI:Bus=1&"),
              HasSubstr("NOTE     numbers: "), HasSubstr("PROBLEM  nvme1n1: its namespace was not read"),
              HasSubstr("PROBLEM  nvme1n1: its health log was not read (the drive answered with status"),
              HasSubstr("NOTE     nvme2n1: its namespace holds no blocks")));
}

TEST(Terminal, ListFitsItsColumnsAndIsColoured)
{
    for (const unsigned columns : {80U, 60U}) {
        const ProgramResult result = runOnTerminal(simulated({"list"}), columns);
        EXPECT_EQ(result.m_ExitCode, 0);
        EXPECT_THAT(result.m_Output, HasSubstr("\033[32mHealthy\033[0m"));
        EXPECT_THAT(result.m_Output, HasSubstr("\u2026"));
        EXPECT_THAT(result.m_Output, Not(HasSubstr("adapter count")));
        const ProgramResult plain =
            runOnTerminal(simulated({"list"}), columns, {{"TERM", "xterm"}, {"NO_COLOR", "1"}});
        const std::vector<std::string> lines = linesOf(plain.m_Output);
        ASSERT_GT(lines.size(), 9U);
        for (std::size_t i = 1; i < lines.size(); ++i)
            EXPECT_LE(Host::displayWidth(lines[i]), columns) << lines[i];
    }
}

TEST(Terminal, HasNoColourWhereNoneIsWanted)
{
    using HostTest::Environment;
    for (const Environment& environment :
         {Environment{{"TERM", "xterm"}, {"NO_COLOR", "1"}}, Environment{{"TERM", "dumb"}}, Environment{}}) {
        const ProgramResult result = runOnTerminal(simulated({"list"}), 80, environment);
        EXPECT_THAT(result.m_Output, Not(HasSubstr("\033")));
        EXPECT_THAT(result.m_Output, HasSubstr("Critical"));
    }
    EXPECT_THAT(runOnTerminal(simulated({"list"}), 80, {{"TERM", "xterm"}, {"NO_COLOR", ""}}).m_Output,
                HasSubstr("\033[32m"));
}

TEST(Terminal, JsonIsTheSameAsInAPipe)
{
    // On a machine that is slow enough a progress line came before.
    EXPECT_THAT(runOnTerminal(simulated({"list", "--json"}), 80).m_Output,
                EndsWith(runProgram(simulated({"list", "--json"})).m_Output));
}

/** Its one drive does not say what it is, and is asked again for two and a half seconds. */
const char* const SLOW_FLEET = R"({"controllers": [{"location": "0000:01:00.0"}]})";

TEST(Terminal, ShowsThatSlowDrivesAreStillBeingAsked)
{
    const TestSupport::CTemporaryFolder folder;
    const std::string fleet = folder.Write("fleet.json", SLOW_FLEET);
    for (const char* command : {"list", "doctor"})
        EXPECT_THAT(runOnTerminal(simulated({command}, fleet), 80).m_Output, HasSubstr("Asking 1 drive"));
    EXPECT_THAT(runOnTerminal(simulated({"list", "--trace", "2"}, fleet), 80).m_Output,
                Not(HasSubstr("Asking")));
}

TEST(Terminal, ShowsNoProgressIntoAPipe)
{
    const TestSupport::CTemporaryFolder folder;
    const ProgramResult result = runProgram(simulated({"list"}, folder.Write("fleet.json", SLOW_FLEET)));
    EXPECT_EQ(result.m_ExitCode, 3);
    EXPECT_THAT(result.m_Output + result.m_Errors, Not(HasSubstr("Asking")));
}

TEST(Terminal, ShowsThePluginsLineWhenTracing)
{
    EXPECT_THAT(runOnTerminal(simulated({"list", "--trace", "1"}), 80).m_Output,
                HasSubstr("adapter count is 7"));
}

} // namespace
