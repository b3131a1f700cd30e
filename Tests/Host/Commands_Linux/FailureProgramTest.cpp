#include "Host/Built.h"
#include "Host/Commands_Linux/SimulatedProgram.h"
#include "Support/TemporaryFolder.h"

#include <PI/ErrorCode.h>

#include <nlohmann/json.hpp>

#include <sys/stat.h>

namespace {

namespace Built = HostTest::Built;
using HostTest::linesOf;
using HostTest::ProgramResult;
using HostTest::runIntoFullPipe;
using HostTest::runProgram;
using HostTest::runUnread;
using HostTest::runWithFullErrors;
using HostTest::simulated;
using nlohmann::json;
using testing::AllOf;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

TEST(ProgramFailure, SaysWhatThereIsWhenANameIsUnknown)
{
    const ProgramResult object = runProgram(simulated({"show", "nvme99n1"}));
    EXPECT_EQ(object.m_ExitCode, 5);
    EXPECT_THAT(object.m_Output, IsEmpty());
    EXPECT_THAT(object.m_Errors, AllOf(HasSubstr("There is no object \"nvme99n1\""), HasSubstr("DEMO-0006")));
    const ProgramResult property = runProgram(simulated({"show", "nvme0n1", "colour", "--json"}));
    EXPECT_EQ(property.m_ExitCode, 2);
    EXPECT_THAT(json::parse(property.m_Output)["error"]["message"].get<std::string>(),
                HasSubstr("30017  Health status"));
}

TEST(ProgramFailure, ReportsMissingHardwareWithItsRequest)
{
    const TestSupport::CTemporaryFolder folder;
    const std::string fleet = folder.Write("empty.json", R"({"controllers": []})");
    const ProgramResult text = runProgram(simulated({"list"}, fleet));
    EXPECT_EQ(text.m_ExitCode, 3);
    EXPECT_THAT(text.m_Output, IsEmpty());
    EXPECT_THAT(text.m_Errors,
                HasSubstr(" refused request 1 (Initialize) with 20001 ERR_NO_SUPPORTED_HARDWARE"));
    const ProgramResult document = runProgram(simulated({"--json", "topology"}, fleet));
    EXPECT_EQ(document.m_ExitCode, 3);
    EXPECT_EQ(json::parse(document.m_Output)["simulated"], true);
    const json error = json::parse(document.m_Output)["error"];
    EXPECT_EQ(error["request"], 1);
    EXPECT_EQ(error["code"], PI::ERR_NO_SUPPORTED_HARDWARE);
    EXPECT_EQ(error["name"], "ERR_NO_SUPPORTED_HARDWARE");
    EXPECT_TRUE(error["message"].is_string());
}

TEST(ProgramFailure, ReportsAFailedRequest)
{
    const ProgramResult result =
        runProgram(simulated({"list", "--json", "--plugin", Built::REFUSING_PLUGIN}));
    EXPECT_EQ(result.m_ExitCode, 1);
    EXPECT_EQ(json::parse(result.m_Output)["error"]["request"], 4);
    EXPECT_EQ(json::parse(result.m_Output)["error"]["name"], "ERR_GENERAL_FAILURE");
    EXPECT_THAT(result.m_Errors,
                HasSubstr(" refused request 4 (GetTopology) with 20000 ERR_GENERAL_FAILURE"));
}

TEST(ProgramFailure, ReportsAModelThatThePluginCannotCutAsAFailedRequest)
{
    const TestSupport::CTemporaryFolder folder;
    const std::string fleet = folder.Write(
        "fleet.json",
        R"({"controllers": [{"identify": {"vendorId": "0x8086", "model": "INTEL", "serial": "S"}}]})");
    EXPECT_EQ(runProgram(simulated({"list"}, fleet)).m_ExitCode, 1);
    const ProgramResult doctor = runProgram(simulated({"doctor"}, fleet));
    EXPECT_EQ(doctor.m_ExitCode, 1);
    EXPECT_THAT(doctor.m_Output,
                HasSubstr("PROBLEM  /dev/nvme0n1: its model is \"INTEL\", only the maker's name"));
}

TEST(ProgramFailure, AFleetFilesKeysForgeNoLines)
{
    const TestSupport::CTemporaryFolder folder;
    const std::string fleet = folder.Write("fleet.json", R"({"a\nostrel: all is well": 1})");
    const ProgramResult result = runProgram(simulated({"list"}, fleet));
    EXPECT_EQ(result.m_ExitCode, 2);
    EXPECT_EQ(linesOf(result.m_Errors).size(), 1U) << result.m_Errors;
}

TEST(ProgramFailure, RefusesWrongUsage)
{
    EXPECT_EQ(runProgram({}).m_ExitCode, 2);
    EXPECT_EQ(runProgram({"lst"}).m_ExitCode, 2);
    const ProgramResult document = runProgram({"lst", "--json"});
    EXPECT_EQ(document.m_ExitCode, 2);
    EXPECT_TRUE(json::parse(document.m_Output)["error"].contains("message"));
    EXPECT_FALSE(json::parse(document.m_Output)["error"].contains("request"));
    EXPECT_FALSE(json::parse(document.m_Output).contains("simulated"));
    EXPECT_EQ(json::parse(runProgram({"lst", "--simulate=x", "--json"}).m_Output)["simulated"], true);
}

TEST(ProgramFailure, IsOneLineForTheCommandWatchAlone)
{
    for (const std::vector<std::string>& words :
         {std::vector<std::string>{"watch", "--json", "--for", "x"}, {"--json", "--bogus", "watch"}})
        EXPECT_EQ(linesOf(runProgram(words).m_Output).size(), 1U);
    EXPECT_THAT(runProgram(simulated({"show", "watch", "--json"})).m_Output, StartsWith("{\n"));
    EXPECT_THAT(runProgram({"list", "watch", "--json"}).m_Output, StartsWith("{\n"));
}

TEST(ProgramFailure, RefusesAWrongFleetFile)
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

TEST(ProgramFailure, APipeThatIsClosedEarlyIsNone)
{
    for (const std::vector<std::string>& words :
         {std::vector<std::string>{"list"}, {"topology", "--json"}, {"show", "nvme0n1"}}) {
        const ProgramResult result = runUnread(simulated(words));
        EXPECT_EQ(result.m_ExitCode, 0);
        EXPECT_EQ(result.m_Errors, "");
    }
    EXPECT_EQ(runUnread({"--help"}).m_ExitCode, 0);
    EXPECT_EQ(runUnread({"--help"}).m_Errors, "");
}

TEST(ProgramFailure, KeepsItsExitCodeWhenNobodyReads)
{
    const ProgramResult unknown = runUnread(simulated({"show", "nobody", "--json"}));
    EXPECT_EQ(unknown.m_ExitCode, 5);
    EXPECT_EQ(linesOf(unknown.m_Errors), linesOf(runProgram(simulated({"show", "nobody"})).m_Errors));
    const TestSupport::CTemporaryFolder folder;
    EXPECT_EQ(
        runUnread(simulated({"doctor"}, folder.Write("empty.json", R"({"controllers": []})"))).m_ExitCode, 3);
}

TEST(ProgramFailure, WaitsForAnOutputThatTakesNoMoreForNow)
{
    const std::vector<std::string> words = simulated({"topology", "--json"});
    const ProgramResult result = runIntoFullPipe(words);
    EXPECT_EQ(result.m_ExitCode, 0);
    EXPECT_EQ(result.m_Output, runProgram(words).m_Output);
}

TEST(ProgramFailure, LosesNoMessageWhereErrorsTakeNoMoreForNow)
{
    // Many times what the pipe holds, so that it is full again and again.
    const std::vector<std::string> words = simulated({"show", std::string(100'000, 'x')});
    const ProgramResult result = runWithFullErrors(words);
    EXPECT_EQ(result.m_ExitCode, 5);
    EXPECT_EQ(result.m_Errors, runProgram(words).m_Errors);
}

TEST(ProgramFailure, RefusesPipesInThePlaceOfFiles)
{
    const TestSupport::CTemporaryFolder folder;
    const std::string pipe = folder.Path() / "pipe";
    for (const char* name : {"pipe", "Ostrel.ini", "AdapterNumbers.txt"})
        ASSERT_EQ(mkfifo((folder.Path() / name).c_str(), 0600), 0);
    const ProgramResult fleet = runProgram(simulated({"list"}, pipe));
    EXPECT_EQ(fleet.m_ExitCode, 2);
    EXPECT_EQ(fleet.m_Errors, "ostrel: The fleet file " + pipe + " is no regular file.\n");
    const ProgramResult trace = runProgram(simulated({"list", "--trace", "2", "--trace-file", pipe}));
    EXPECT_EQ(trace.m_ExitCode, 2);
    EXPECT_EQ(trace.m_Errors,
              "ostrel: The trace file " + pipe + " cannot be written: no program reads from it.\n");
    const ProgramResult list = runProgram(simulated({"list", "--data", folder.Path()}));
    EXPECT_EQ(list.m_ExitCode, 0);
    for (const char* name : {"Ostrel.ini", "AdapterNumbers.txt"})
        EXPECT_THAT(list.m_Errors, HasSubstr((folder.Path() / name).string() + " is no regular file"));
}

TEST(ProgramFailure, SaysWhenResultsCannotBeWritten)
{
    const std::string command = std::string(Built::PROGRAM) + " --version >/dev/full 2>/dev/null";
    const int status = std::system(command.c_str());
    EXPECT_EQ(WEXITSTATUS(status), 1);
}

TEST(ProgramFailure, NamesAReaderThatIsNotThere)
{
    const TestSupport::CTemporaryFolder folder;
    const ProgramResult missing = runProgram({"list", "--reader", folder.Path() / "reader.sock"});
    EXPECT_EQ(missing.m_ExitCode, 4);
    EXPECT_THAT(missing.m_Errors,
                AllOf(HasSubstr("No reader can be used at "), HasSubstr("reader.sock: No such file")));
}

} // namespace
