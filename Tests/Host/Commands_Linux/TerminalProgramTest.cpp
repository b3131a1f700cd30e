#include "Base/Text.h"
#include "Host/Commands_Linux/SimulatedProgram.h"
#include "Support/TemporaryFolder.h"

#include <nlohmann/json.hpp>

namespace {

using HostTest::linesOf;
using HostTest::ProgramResult;
using HostTest::runOnTerminal;
using HostTest::runProgram;
using HostTest::simulated;
using nlohmann::json;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;

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

TEST(Terminal, ShowFitsANarrowOne)
{
    constexpr unsigned columns = 30;
    const std::string shown =
        runOnTerminal(simulated({"show", "DEMO-0006"}), columns, {{"TERM", "dumb"}}).m_Output;
    EXPECT_THAT(shown, HasSubstr("Estimated end of life"));
    const std::vector<std::string> lines = linesOf(shown);
    // The first line names the fleet. A text without a blank cannot be wrapped.
    for (std::size_t i = 1; i < lines.size(); ++i) {
        const bool isOneWord = lines[i].find(' ', lines[i].find_first_not_of(' ')) == std::string::npos;
        EXPECT_TRUE(isOneWord || Host::displayWidth(lines[i]) <= columns) << lines[i];
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
    // On a slow machine a progress line came before.
    EXPECT_THAT(runOnTerminal(simulated({"list", "--json"}), 80).m_Output,
                EndsWith(runProgram(simulated({"list", "--json"})).m_Output));
}

/** Its one drive does not identify itself, so it is asked again for two and a half seconds. */
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
    EXPECT_EQ(result.m_ExitCode, 0) << "a row that says that the drive does not answer";
    EXPECT_THAT(result.m_Output + result.m_Errors, Not(HasSubstr("Asking")));
}

TEST(Terminal, ShowsThePluginsLineWhenTracing)
{
    EXPECT_THAT(runOnTerminal(simulated({"list", "--trace", "1"}), 80).m_Output,
                HasSubstr("adapter count is 7"));
}

} // namespace
