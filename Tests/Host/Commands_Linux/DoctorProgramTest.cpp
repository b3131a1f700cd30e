#include "Host/Commands_Linux/SimulatedProgram.h"
#include "Support/TemporaryFolder.h"

#include <nlohmann/json.hpp>

namespace {

using HostTest::ProgramResult;
using HostTest::runProgram;
using HostTest::simulated;
using nlohmann::json;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

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
        AllOf(HasSubstr("PROBLEM  nvme0n1: does not answer: the drive answered with status"),
              HasSubstr("PROBLEM  nvme1n1: its namespace was not read"),
              HasSubstr("PROBLEM  nvme1n1: its health log was not read (the drive answered with status"),
              HasSubstr("NOTE     nvme2n1: its namespace contains no blocks"),
              Not(HasSubstr("but is shown at"))));
}

} // namespace
