#include "Host/Commands_Linux/SimulatedProgram.h"
#include "Support/TemporaryFolder.h"

#include <PI/Object.h>
#include <PI/StateCode.h>

#include <nlohmann/json.hpp>

namespace {

using HostTest::linesOf;
using HostTest::ProgramResult;
using HostTest::runOnTerminal;
using HostTest::runProgram;
using HostTest::simulated;
using nlohmann::json;
using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;
using testing::StartsWith;

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

TEST(Program, DropsThePluginsConsoleLineUnlessATraceIsAskedFor)
{
    const ProgramResult plain = runProgram(simulated({"list"}));
    EXPECT_THAT(plain.m_Output, Not(HasSubstr("adapter count")));
    EXPECT_EQ(plain.m_Errors, "");
    const ProgramResult traced = runProgram(simulated({"list", "--trace", "1"}));
    EXPECT_EQ(traced.m_Output, plain.m_Output);
    EXPECT_EQ(traced.m_Errors, "Ostrel:  Initialize:  adapter count is 7\n");
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
    EXPECT_EQ(document["drives"][6]["reasonCodes"],
              json({PI::REASON_TEMPERATURE, PI::REASON_SPARE_LOW, PI::REASON_RELIABILITY_DEGRADED,
                    PI::REASON_READ_ONLY}));
    EXPECT_EQ(document["drives"][6]["healthCode"], PI::HEALTH_CRITICAL);
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
    EXPECT_EQ(objects[0]["type"], PI::TYPE_PLUGIN);
    EXPECT_EQ(objects[0]["children"].size(), 7U);
    EXPECT_EQ(objects[0]["operations"], json::parse(R"([{"id": 50002, "name": "Collect events"}])"));
    EXPECT_EQ(objects[1]["type"], PI::TYPE_ADAPTER);
    EXPECT_EQ(objects[1]["parents"], json::parse(R"(["0x0139000000000000"])"));
    EXPECT_EQ(objects[8]["type"], PI::TYPE_PHYSICAL_DRIVE);
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
    const std::string both = runProgram(simulated({"show", "/dev/nvme0n1", "--json"})).m_Output;
    EXPECT_EQ(json::parse(both)["objects"].size(), 2U);
    for (const char* name : {"nvme0", "/dev/nvme0", "0000:01:00.0", "01:00.0"})
        EXPECT_EQ(runProgram(simulated({"show", name, "--json"})).m_Output, both) << name;
    const json one =
        json::parse(runProgram(simulated({"show", "PCI:Bus=1&Device=0&Function=0&ID=0", "--json"})).m_Output);
    ASSERT_EQ(one["objects"].size(), 1U);
    EXPECT_EQ(one["objects"][0]["type"], PI::TYPE_PHYSICAL_DRIVE);
    EXPECT_THAT(runProgram(simulated({"show", "0x0139000000000000"})).m_Output,
                HasSubstr("Poll interval  30 s\n"));
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

    const std::string show = runProgram(simulated({"show", "S"}, fleet)).m_Output;
    EXPECT_THAT(show,
                AllOf(HasSubstr("  The health log of this drive was not read. "),
                      HasSubstr("  Health status: Unknown\n"), Not(HasSubstr("Nothing needs to be done"))));
    const ProgramResult row = runProgram(simulated({"show", "S", "health status"}, fleet));
    EXPECT_THAT(row.m_Output, testing::EndsWith("\nHealthy\n"));
    EXPECT_THAT(row.m_Errors,
                HasSubstr("Health status is not measured: the health log of this drive was not read."));
}

TEST(Program, FindsADriveOutsideTheFirstSegmentWhereItIs)
{
    const TestSupport::CTemporaryFolder folder;
    const std::string fleet = folder.Write("fleet.json", R"({"controllers": [
            {"location": "0000:e1:00.0", "identify": {"vendorId": 1, "model": "M", "serial": "S"}},
            {"location": "10000:e1:00.0", "identify": {"vendorId": 1, "model": "M", "serial": "T"}}]})");
    const ProgramResult show = runProgram(simulated({"show", "10000:e1:00.0"}, fleet));
    EXPECT_EQ(show.m_ExitCode, 0) << show.m_Errors;
    EXPECT_THAT(show.m_Output, AllOf(HasSubstr("  The controller is at 10000:e1:00.0. "),
                                     HasSubstr("PCI:Bus=225&Device=0&Function=0\n")));
    const json drives = json::parse(runProgram(simulated({"list", "--json"}, fleet)).m_Output)["drives"];
    EXPECT_EQ(drives[1]["pciAddress"], "10000:e1:00.0");
    EXPECT_THAT(
        runProgram(simulated({"doctor"}, fleet)).m_Output,
        AllOf(HasSubstr("nvme0n1, nvme1n1: share the location PCI:Bus=225&"), Not(HasSubstr("left out"))));
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

} // namespace
