#include "Support/VirtualClock.h"

#include <TLX/Waiter.h>

#include <gtest/gtest.h>

#include <future>
#include <stdexcept>
#include <vector>

namespace {

using namespace TLX::Threading;
using TestSupport::CVirtualClock;

/** Three auto-reset events and a waiter for them. */
class Waiter : public testing::Test
{
protected:
    void SetUp() override
    {
        for (CEvent* event : {&m_First, &m_Second, &m_Third})
            ASSERT_EQ(event->Init(false, false), WaitResult::Taken);
    }

    /** A wait of 100 ms on a thread of its own. */
    std::future<std::uint32_t> WaitElsewhere()
    {
        return std::async(std::launch::async, [this] { return m_Waiter.Wait(CWaitInterval(100)); });
    }

    CVirtualClock m_Clock;
    CEvent m_First;
    CEvent m_Second;
    CEvent m_Third;
    CWaiter m_Waiter{&m_First, &m_Second, &m_Third};
    const CWaitInterval m_NoTime{0};
};

TEST_F(Waiter, SaysWhichEventFiredAndTakesItsSignal)
{
    m_Second.Set();
    EXPECT_EQ(m_Waiter.Wait(CWaitInterval(100)), 2U);
    EXPECT_EQ(m_Waiter.Wait(m_NoTime), 130U);
    m_Third.Set();
    EXPECT_EQ(m_Waiter.Wait(CWaitInterval(100)), 3U);
}

TEST_F(Waiter, TakesTheFirstOfSeveralAndLeavesTheOthers)
{
    m_Third.Set();
    m_First.Set();
    EXPECT_EQ(m_Waiter.Wait(m_NoTime), 1U);
    EXPECT_EQ(m_Waiter.Wait(m_NoTime), 3U);
    EXPECT_EQ(m_Waiter.Wait(m_NoTime), 130U);
}

TEST_F(Waiter, CountsTwoSignalsThatNobodySawAsOne)
{
    m_First.Set();
    m_First.Set();
    EXPECT_EQ(m_Waiter.Wait(m_NoTime), 1U);
    EXPECT_EQ(m_Waiter.Wait(m_NoTime), 130U);
}

TEST_F(Waiter, SeesAManualResetEventUntilItIsReset)
{
    ASSERT_EQ(m_Second.Init(true, true), WaitResult::Taken);
    EXPECT_EQ(m_Waiter.Wait(m_NoTime), 2U);
    EXPECT_EQ(m_Waiter.Wait(m_NoTime), 2U);
    m_Second.Reset();
    EXPECT_EQ(m_Waiter.Wait(m_NoTime), 130U);
}

TEST_F(Waiter, WakesWhenAnEventFiresWhileItSleeps)
{
    auto result = WaitElsewhere();
    EXPECT_EQ(m_Clock.AwaitWait(1), 100U);
    m_Third.Set();
    EXPECT_EQ(result.get(), 3U);
}

TEST_F(Waiter, WakesWhenTheTimeIsOverAndNotBefore)
{
    auto result = WaitElsewhere();
    EXPECT_EQ(m_Clock.AwaitWait(1), 100U);
    m_Clock.Advance(99);
    // If the wait were over by now, it would not see this event.
    m_Second.Set();
    EXPECT_EQ(result.get(), 2U);

    result = WaitElsewhere();
    m_Clock.AwaitWait(2);
    m_Clock.Advance(100);
    EXPECT_EQ(result.get(), 130U);
}

TEST_F(Waiter, PrefersAnEventToTheEndOfTheTime)
{
    const CWaitInterval interval(10);
    m_Clock.Advance(10);
    m_Third.Set();
    EXPECT_EQ(m_Waiter.Wait(interval), 3U);
    EXPECT_EQ(m_Waiter.Wait(interval), 130U);
}

TEST_F(Waiter, FailsWithAnEventThatIsNotReady)
{
    CEvent neverInitialised;
    m_First.Set();
    EXPECT_EQ(CWaiter({&m_First, &neverInitialised}).Wait(m_NoTime), WaitResult::Failed);
    EXPECT_EQ(m_First.Wait(0), WaitResult::Taken) << "a failed wait takes no signal";
}

TEST_F(Waiter, TakesAsManyEventsAsASystemWaitsForAtOnceAndNoMore)
{
    std::vector<CEvent*> events(MOST_EVENTS, &m_First);
    events.back() = &m_Second;
    m_Second.Set();
    EXPECT_EQ(CWaiter(events).Wait(m_NoTime), MOST_EVENTS);
    EXPECT_EQ(CWaiter(events).Wait(m_NoTime), WaitResult::TimedOut);
    events.push_back(&m_Third);
    EXPECT_THROW(CWaiter{events}, std::length_error);
}

TEST(WaiterOnTheSystemClock, TimesItselfOut)
{
    CEvent event;
    ASSERT_EQ(event.Init(false, false), WaitResult::Taken);
    const CWaitInterval interval(5);
    EXPECT_EQ(CWaiter({&event}).Wait(interval), WaitResult::TimedOut);
    EXPECT_EQ(interval.Remaining(), 0U);
    event.Set();
    EXPECT_EQ(CWaiter({&event}).Wait(interval), 1U);
}

} // namespace
