#include "Terminal/Progress.h"

#include "Support/VirtualClock.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <memory>
#include <mutex>
#include <vector>

namespace {

using Host::Cli::Messages;
using Host::Cli::Progress;
using testing::ElementsAre;
using testing::IsEmpty;

/** The output of a terminal, and the clock that times it. */
class ProgressTest : public testing::Test
{
protected:
    Messages::Write writer()
    {
        return [this](const std::string& text) {
            const std::scoped_lock guard(m_Lock);
            m_Written.push_back(text);
        };
    }

    std::vector<std::string> written()
    {
        const std::scoped_lock guard(m_Lock);
        return m_Written;
    }

    /** Ends the thread's wait with this number. Returns how long the wait would have lasted. */
    std::uint64_t pass(std::size_t number)
    {
        const std::uint64_t wait = m_Clock.AwaitWait(number);
        m_Clock.Advance(wait);
        m_Clock.AwaitWait(number + 1);
        return wait;
    }

    TestSupport::CVirtualClock m_Clock;
    Messages m_Messages{true, writer()};

private:
    std::mutex m_Lock;
    std::vector<std::string> m_Written;
};

TEST_F(ProgressTest, ComesAfterHalfASecondCountsSecondsAndGoes)
{
    {
        const Progress progress(64, &m_Messages);
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
    const Progress progress(1, &m_Messages);
    m_Clock.AwaitWait(1);
    m_Clock.Advance(3700);
    EXPECT_EQ(m_Clock.AwaitWait(2), 300U);
    EXPECT_THAT(written(), ElementsAre("Asking 1 drive, 3 s ...\r"));
}

TEST_F(ProgressTest, ShowsNothingOfShortWork)
{
    {
        const Progress progress(64, &m_Messages);
        m_Clock.AwaitWait(1);
        m_Clock.Advance(499);
    }
    EXPECT_THAT(written(), IsEmpty());
}

TEST_F(ProgressTest, AMessageTakesItsPlaceAndItComesAgainBelow)
{
    const Progress progress(64, &m_Messages);
    pass(1);
    m_Messages.tell("No.");
    pass(2);
    EXPECT_THAT(written(), ElementsAre("Asking 64 drives ...\r", std::string(20, ' ') + "\rostrel: No.\n",
                                       "Asking 64 drives, 1 s ...\r"));
}

TEST_F(ProgressTest, NeedsATerminal)
{
    Messages elsewhere(false, writer());
    for (Messages* messages : {static_cast<Messages*>(nullptr), &elsewhere}) {
        const Progress progress(64, messages);
        m_Clock.Advance(10'000);
    }
    EXPECT_THAT(written(), IsEmpty());
}

} // namespace
