#include "Support/SilentPipe.h"

#include <TLX/Event.h>
#include <TLX/FastMutex.h>
#include <TLX/Thread.h>

#include <gtest/gtest.h>

#include <atomic>

#include <windows.h>

namespace {

using namespace TLX::Threading;

/** Threads that do not return from a call, even when its request is cancelled. */
class StrikeDown : public testing::Test
{
protected:
    void SetUp() override { ASSERT_EQ(m_Reached.Init(false, true), WaitResult::Taken); }

    CEvent m_Reached;
};

TEST_F(StrikeDown, EndsACallThatWaitsForNoDevice)
{
    CThread thread([this] {
        interruptibly([this] {
            m_Reached.Set();
            Sleep(INFINITE);
            return 0;
        });
    });
    ASSERT_EQ(m_Reached.Wait(), WaitResult::Taken);
    thread.Cancel();
    EXPECT_EQ(thread.Wait(), WaitResult::Taken);
}

TEST_F(StrikeDown, EndsACallThatAsksAgainHoweverOftenItsRequestIsCancelled)
{
    const TestSupport::CSilentPipe pipe;
    std::atomic<int> reads = 0;
    CThread thread([&] {
        interruptibly([&] {
            m_Reached.Set();
            while (!pipe.ReadByte())
                ++reads;
            return 0;
        });
    });
    ASSERT_EQ(m_Reached.Wait(), WaitResult::Taken);
    thread.Cancel();
    EXPECT_EQ(thread.Wait(), WaitResult::Taken);
    EXPECT_GE(reads, 1) << "its request is cancelled first";
}

TEST_F(StrikeDown, LeavesItsLockToWhoComesNext)
{
    Native_OS::CFastMutex mutex;
    ASSERT_EQ(mutex.Init(), WaitResult::Taken);
    CThread thread([&] {
        EXPECT_EQ(mutex.Wait(), WaitResult::Taken);
        interruptibly([this] {
            m_Reached.Set();
            Sleep(INFINITE);
            return 0;
        });
    });
    ASSERT_EQ(m_Reached.Wait(), WaitResult::Taken);
    EXPECT_EQ(mutex.Wait(0), WaitResult::TimedOut);
    thread.Cancel();
    EXPECT_EQ(mutex.Wait(), WaitResult::Taken);
    mutex.Release();
    EXPECT_EQ(thread.Wait(), WaitResult::Taken);
}

} // namespace
