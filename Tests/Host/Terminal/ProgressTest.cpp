#include "Terminal/Progress.h"

#include "Host/FakeOutput.h"
#include "Support/VirtualClock.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <vector>

namespace {

using Host::Cli::Progress;
using Host::Cli::Terminal;
using testing::ElementsAre;
using testing::IsEmpty;

/** The output of a terminal, and the clock that times it. */
class ProgressTest : public testing::Test
{
protected:
    std::vector<std::string> written() { return m_Messages.writes(); }

    /** Ends the thread's wait with this number. Returns how long the wait would have lasted. */
    std::uint64_t pass(std::size_t number)
    {
        const std::uint64_t wait = m_Clock.AwaitWait(number);
        m_Clock.Advance(wait);
        m_Clock.AwaitWait(number + 1);
        return wait;
    }

    TestSupport::CVirtualClock m_Clock;
    HostTest::FakeOutput m_Results{true};
    HostTest::FakeOutput m_Messages{true};
    Terminal m_Terminal{m_Results, m_Messages};
};

TEST_F(ProgressTest, ComesAfterHalfASecondCountsSecondsAndGoes)
{
    {
        const Progress progress("Asking 64 drives", &m_Terminal);
        EXPECT_EQ(pass(1), 500U);
        EXPECT_THAT(written(), ElementsAre("Asking 64 drives ...\r"));
        EXPECT_EQ(pass(2), 500U);
        EXPECT_EQ(pass(3), 1000U);
        EXPECT_THAT(written(), ElementsAre("Asking 64 drives ...\r", "Asking 64 drives, 1 s ...\r",
                                           "Asking 64 drives, 2 s ...\r"));
    }
    EXPECT_EQ(written().back(), std::string(25, ' ') + '\r');
}

TEST_F(ProgressTest, KeepsToWholeSecondsWhenItIsLate)
{
    const Progress progress("Asking 1 drive", &m_Terminal);
    m_Clock.AwaitWait(1);
    m_Clock.Advance(3700);
    EXPECT_EQ(m_Clock.AwaitWait(2), 300U);
    EXPECT_THAT(written(), ElementsAre("Asking 1 drive, 3 s ...\r"));
}

TEST_F(ProgressTest, ShowsNothingOfShortWork)
{
    {
        const Progress progress("Asking 64 drives", &m_Terminal);
        m_Clock.AwaitWait(1);
        m_Clock.Advance(499);
    }
    EXPECT_THAT(written(), IsEmpty());
}

TEST_F(ProgressTest, AMessageTakesItsPlaceAndItComesAgainBelow)
{
    const Progress progress("Asking 64 drives", &m_Terminal);
    pass(1);
    m_Terminal.tell("No.");
    pass(2);
    EXPECT_THAT(written(), ElementsAre("Asking 64 drives ...\r", std::string(20, ' ') + "\rostrel: No.\n",
                                       "Asking 64 drives, 1 s ...\r"));
}

TEST_F(ProgressTest, NeedsATerminal)
{
    HostTest::FakeOutput pipe(false);
    Terminal elsewhere(m_Results, pipe);
    for (Terminal* terminal : {static_cast<Terminal*>(nullptr), &elsewhere}) {
        const Progress progress("Asking 64 drives", terminal);
        m_Clock.Advance(10'000);
    }
    EXPECT_THAT(written(), IsEmpty());
    EXPECT_THAT(pipe.writes(), IsEmpty());
}

} // namespace
