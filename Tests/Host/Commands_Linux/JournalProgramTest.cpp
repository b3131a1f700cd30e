#include "Host/Commands_Linux/RunProgram.h"
#include "Journal/Store.h"
#include "Support/TemporaryFolder.h"

#include <TLX/Clock.h>

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <csignal>
#include <filesystem>
#include <sstream>

namespace {

using HostTest::ProgramResult;
using HostTest::RunningProgram;
using HostTest::runProgram;
using nlohmann::json;
using testing::ContainsRegex;
using testing::ElementsAre;
using testing::HasSubstr;
using namespace Host::Journal;

constexpr std::uint64_t HOUR = 3'600'000;

/** `ostrel journal` over a file that the test writes like the service. */
class JournalProgramTest : public testing::Test
{
protected:
    Store store() const
    {
        return Store(serviceFile(m_Data.Path()), [](const std::string&) {});
    }

    static Entry entry(const std::string& text, std::uint64_t end)
    {
        Entry result{Kind::ReadOnly, Phase::Began, Severity::Error, std::nullopt, "A", {}, text, {}, end};
        result.m_Drive.m_Serial = "A";
        result.m_Drive.m_Device = "/dev/nvme0n1";
        return result;
    }

    std::vector<std::string> arguments(std::vector<std::string> words = {}) const
    {
        words.insert(words.begin(), {"journal", "--data", m_Data.Path()});
        return words;
    }

    static std::vector<std::string> texts(const ProgramResult& result)
    {
        EXPECT_EQ(result.m_ExitCode, 0) << result.m_Errors;
        std::vector<std::string> texts;
        std::istringstream lines(result.m_Output);
        for (std::string line; std::getline(lines, line);)
            texts.push_back(json::parse(line)["text"]);
        return texts;
    }

    const TestSupport::CTemporaryFolder m_Data;
    const std::uint64_t m_Now = TLX::Misc::now();
};

TEST_F(JournalProgramTest, PrintsEntriesAsWatchDoes)
{
    Entry started{
        Kind::ServiceStarted, Phase::Change, Severity::Information, {}, "", {}, "The service started.",
        m_Now - 2 * HOUR,     m_Now};
    store().commit({{entry("A is read-only.", m_Now), started}, {}});
    const ProgramResult result = runProgram(arguments());
    EXPECT_EQ(result.m_ExitCode, 0) << result.m_Errors;
    EXPECT_THAT(result.m_Output,
                ContainsRegex("^20[0-9-]+ [0-9:]+  Error        A is read-only. \\(nvme0n1\\)\n"
                              "20[0-9-]+ [0-9:]+  Information  The service started. It happened after "
                              "20[0-9-]+ [0-9:]+.\n$"));
    EXPECT_FALSE(std::filesystem::exists(m_Data.Path() / "Ostrel.db")) << "it leaves nothing behind";
}

TEST_F(JournalProgramTest, PrintsOneDocumentALine)
{
    Store store = this->store();
    store.commit({{entry("one", m_Now), entry("two", m_Now)}, {}});
    EXPECT_THAT(texts(runProgram(arguments({"--json"}))), ElementsAre("one", "two")) << "the service runs";
    const std::string output = runProgram(arguments({"--json", "--since", "1h"})).m_Output;
    const json line = json::parse(output.substr(0, output.find('\n')));
    EXPECT_EQ(line["format"], 1);
    EXPECT_EQ(line["number"], 1);
    EXPECT_EQ(line["kind"], "read-only");
    EXPECT_EQ(line["key"], "A");
    EXPECT_EQ(line["drive"]["device"], "/dev/nvme0n1");
}

TEST_F(JournalProgramTest, BeginsAtTheTimeThatTheUserNames)
{
    store().commit({{entry("old", m_Now - 5 * HOUR), entry("new", m_Now - HOUR)}, {}});
    EXPECT_THAT(texts(runProgram(arguments({"--json", "--since", "3h"}))), ElementsAre("new"));
    EXPECT_THAT(texts(runProgram(arguments({"--json", "--since", "1d"}))), ElementsAre("old", "new"));
    EXPECT_THAT(texts(runProgram(arguments({"--json", "--since", "2999-01-01"}))), testing::IsEmpty());
    const ProgramResult wrong = runProgram(arguments({"--since", "soon"}));
    EXPECT_EQ(wrong.m_ExitCode, 2);
    EXPECT_THAT(wrong.m_Errors, HasSubstr("\"soon\" is no time, such as 2h, 7d, 2026-01-31"));
}

TEST_F(JournalProgramTest, FollowsFromTheTimeThatTheUserNames)
{
    store().commit({{entry("new", m_Now), entry("old", m_Now - 5 * HOUR)}, {}});
    RunningProgram program(arguments({"--json", "--follow", "--since", "3h"}));
    const auto next = [&] { return json::parse(program.awaitResult("\n"))["text"].get<std::string>(); };
    EXPECT_EQ(next(), "new");
    Store service = store();
    service.commit({{entry("the clock was set back", m_Now - 4 * HOUR), entry("newer", m_Now)}, {}});
    EXPECT_EQ(next(), "newer") << "each once";
    program.send(SIGTERM);
    EXPECT_EQ(program.finish().m_ExitCode, 0);
}

TEST_F(JournalProgramTest, FollowsTheServiceThroughItsRestart)
{
    store().commit({{entry("before", m_Now)}, {}});
    RunningProgram program(arguments({"--json", "--follow"}));
    const auto next = [&] { return json::parse(program.awaitResult("\n"))["text"].get<std::string>(); };
    EXPECT_EQ(next(), "before");
    {
        Store service = store();
        service.commit({{entry("during", m_Now)}, {}});
        EXPECT_EQ(next(), "during");
    }
    store().commit({{entry("again", m_Now)}, {}});
    EXPECT_EQ(next(), "again");
    program.send(SIGTERM);
    EXPECT_EQ(program.finish().m_ExitCode, 0);
}

TEST_F(JournalProgramTest, SaysWhenThereIsNoJournal)
{
    const ProgramResult result = runProgram(arguments({"--json"}));
    EXPECT_EQ(result.m_ExitCode, 1);
    EXPECT_THAT(result.m_Errors, HasSubstr("Service.db yet. The service writes it: ostrel serve"));
    EXPECT_EQ(json::parse(result.m_Output)["format"], 1);
    EXPECT_TRUE(std::filesystem::is_empty(m_Data.Path()));
}

TEST_F(JournalProgramTest, SaysWhenTheJournalIsDamaged)
{
    m_Data.Write("Service.db", std::string(5000, 'x'));
    const ProgramResult result = runProgram(arguments());
    EXPECT_EQ(result.m_ExitCode, 1);
    EXPECT_THAT(result.m_Errors, HasSubstr("Service.db cannot be read: it is no database."));
    EXPECT_EQ(m_Data.Read("Service.db").size(), 5000U) << "only the service may replace it";
}

} // namespace
