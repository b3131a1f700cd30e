#include "Host/Built.h"
#include "Host/Commands_Linux/SimulatedProgram.h"
#include "Support/TemporaryFolder.h"

#include <nlohmann/json.hpp>

#include <fstream>

namespace {

namespace Built = HostTest::Built;
using HostTest::ProgramResult;
using HostTest::runProgram;
using HostTest::simulated;
using nlohmann::json;
using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

TEST(ProgramPlugins, ShowsOtherPluginsBesideItsOwn)
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

TEST(ProgramPlugins, TracesEachPluginUnderItsOwnMask)
{
    const ProgramResult traced = runProgram(
        simulated({"list", "--plugin", Built::SECOND_PLUGIN, "--trace", "0x12", "--trace", "313=4"}));
    EXPECT_THAT(traced.m_Errors, AllOf(HasSubstr(" Second 2 Second Request:"), HasSubstr(" Ostrel 4 "),
                                       Not(HasSubstr(" Ostrel 2 ")), Not(HasSubstr(" Ostrel 16 "))));
}

TEST(ProgramPlugins, RefusesAPluginOfAnotherVersion)
{
    const ProgramResult result = runProgram({"list", "--plugin", Built::WRONG_VERSION_PLUGIN});
    EXPECT_EQ(result.m_ExitCode, 1);
    EXPECT_THAT(result.m_Errors, HasSubstr(" has interface version 3, but this program has version 2"));
}

TEST(ProgramPlugins, TracesToStandardErrorOrAFile)
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

} // namespace
