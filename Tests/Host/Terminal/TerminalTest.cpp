#include "Terminal/Terminal.h"

#include "Host/FakeOutput.h"

#include <string>

namespace {

using Host::Cli::Terminal;
using HostTest::FakeOutput;

/** A terminal of ten columns, or pipes. */
struct Fixture
{
    explicit Fixture(bool isTerminal) : m_Results(isTerminal), m_Messages(isTerminal)
    {
        m_Results.m_Width = 10;
    }

    FakeOutput m_Results;
    FakeOutput m_Messages;
    Terminal m_Terminal{m_Results, m_Messages};
};

TEST(TerminalLines, MessagesNameTheProgramAndForgeNothing)
{
    Fixture pipes(false);
    pipes.m_Terminal.tell("One.\nTwo.\033[2J");
    EXPECT_EQ(pipes.m_Messages.written(), "ostrel: One.\nTwo.?[2J\n");
    EXPECT_EQ(pipes.m_Results.written(), "");
}

TEST(TerminalLines, AProgressGivesWayToAShorterOneAndToAMessage)
{
    Fixture both(true);
    both.m_Terminal.showProgress("4 \u00b0C");
    both.m_Terminal.showProgress("no");
    both.m_Terminal.tell("Hm.");
    both.m_Terminal.tell("Hm.");
    EXPECT_EQ(both.m_Messages.written(), "4 \u00b0C\rno  \r  \rostrel: Hm.\nostrel: Hm.\n");
}

TEST(TerminalLines, AProgressIsTakenAwayOnce)
{
    Fixture both(true);
    both.m_Terminal.showProgress("");
    both.m_Terminal.showProgress("on");
    both.m_Terminal.showProgress("");
    both.m_Terminal.showProgress("");
    EXPECT_EQ(both.m_Messages.written(), "on\r  \r");
}

TEST(TerminalLines, AStatusStaysBelowTheResultsAndGoesAtTheEnd)
{
    FakeOutput results(true);
    results.m_Width = 10;
    FakeOutput messages(true);
    {
        Terminal terminal(results, messages);
        terminal.print("first\n");
        terminal.showStatus("7 drives, next poll");
        terminal.print("second\n");
    }
    EXPECT_EQ(results.written(), "first\n"
                                 "\r\033[K7 dr\u2026poll\r"
                                 "\r\033[Ksecond\n7 dr\u2026poll\r"
                                 "\r\033[K");
}

TEST(TerminalLines, AMessageLeavesNoTraceOfAStatus)
{
    Fixture both(true);
    both.m_Terminal.showStatus("on");
    both.m_Terminal.tell("Hm.");
    both.m_Terminal.showStatus("on");
    both.m_Terminal.showStatus("");
    both.m_Terminal.tell("Hm.");
    EXPECT_EQ(both.m_Messages.written(), "  \rostrel: Hm.\nostrel: Hm.\n");
}

TEST(TerminalLines, PipesGetResultsAndMessagesAlone)
{
    Fixture pipes(false);
    EXPECT_FALSE(pipes.m_Terminal.showsStatus());
    EXPECT_FALSE(pipes.m_Terminal.showsProgress());
    pipes.m_Terminal.showProgress("on");
    pipes.m_Terminal.showStatus("on");
    pipes.m_Terminal.print("result\n");
    pipes.m_Terminal.tell("Hm.");
    EXPECT_EQ(pipes.m_Results.written(), "result\n");
    EXPECT_EQ(pipes.m_Messages.written(), "ostrel: Hm.\n");
    EXPECT_EQ(pipes.m_Terminal.screen().m_Width, std::nullopt);
}

TEST(TerminalLines, AMessageThatCannotBeWrittenEndsNothing)
{
    Fixture pipes(false);
    pipes.m_Messages.m_Fails = true;
    EXPECT_NO_THROW(pipes.m_Terminal.tell("Hm."));
    pipes.m_Results.m_Fails = true;
    EXPECT_ANY_THROW(pipes.m_Terminal.print("result\n"));
}

} // namespace
