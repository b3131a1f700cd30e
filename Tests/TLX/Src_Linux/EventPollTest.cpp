#include "SystemCalls.h"

#include <TLX/Event.h>
#include <TLX/Thread.h>

#include <gtest/gtest.h>

#include <cerrno>

namespace {

using namespace TLX::Threading;

/** An auto-reset event whose waits go through a scripted `ppoll`. */
class EventPoll : public testing::Test
{
protected:
    void SetUp() override { ASSERT_EQ(m_Event.Init(true, false), WaitResult::Taken); }
    void TearDown() override { SystemCalls::g_Poll = nullptr; }

    CEvent m_Event;
    int m_Calls = 0;
};

TEST_F(EventPoll, ASignalOfTheSystemDoesNotEndTheWait)
{
    SystemCalls::g_Poll = [this](const auto& call) {
        if (++m_Calls > 2)
            return call();
        errno = EINTR;
        return -1;
    };
    EXPECT_EQ(m_Event.Wait(), WaitResult::Taken);
    EXPECT_EQ(m_Calls, 3);
}

TEST_F(EventPoll, WaitsOnWhenAnotherWaiterWasFirst)
{
    SystemCalls::g_Poll = [this](const auto& call) {
        if (++m_Calls == 2)
            m_Event.Set();
        const int result = call();
        if (m_Calls == 1)
            m_Event.Reset();
        return result;
    };
    EXPECT_EQ(m_Event.Wait(), WaitResult::Taken);
    EXPECT_EQ(m_Calls, 2);
}

TEST_F(EventPoll, RunsOutOfTimeWhenAnotherWaiterWasFirst)
{
    SystemCalls::g_Poll = [this](const auto& call) {
        const int result = call();
        if (++m_Calls == 1)
            m_Event.Reset();
        return result;
    };
    EXPECT_EQ(m_Event.Wait(0), WaitResult::TimedOut);
    EXPECT_EQ(m_Calls, 2);
}

TEST_F(EventPoll, FailsWhenTheSystemRefuses)
{
    SystemCalls::g_Poll = [](const auto&) {
        errno = ENOMEM;
        return -1;
    };
    EXPECT_EQ(m_Event.Wait(), WaitResult::Failed);
}

TEST_F(EventPoll, OfAThreadThatFailsDoesNotPassForItsEnd)
{
    CThread thread([this] { (void)m_Event.Wait(); });
    EXPECT_EQ(thread.Wait(), WaitResult::Taken);
    SystemCalls::g_Poll = [](const auto&) {
        errno = ENOMEM;
        return -1;
    };
    EXPECT_EQ(thread.Wait(), WaitResult::TimedOut);
    EXPECT_EQ(thread.Wait(0), WaitResult::TimedOut);
}

} // namespace
