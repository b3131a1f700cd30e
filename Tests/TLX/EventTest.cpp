#include "Support/Barrier.h"

#include <TLX/Event.h>

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <thread>
#include <vector>

namespace {

using namespace TLX::Threading;

TEST(Event, BeforeInitAWaitFailsAtOnceAndTheOthersDoNothing)
{
    CEvent event;
    EXPECT_EQ(event.Wait(), WaitResult::Failed);
    event.Set();
    event.Reset();
    EXPECT_EQ(event.Wait(0), WaitResult::Failed);
}

TEST(Event, StartsInTheGivenState)
{
    for (const bool manualReset : {false, true}) {
        CEvent event;
        ASSERT_EQ(event.Init(true, manualReset), 1U);
        EXPECT_EQ(event.Wait(0), 1U);
        ASSERT_EQ(event.Init(false, manualReset), 1U);
        EXPECT_EQ(event.Wait(0), 130U);
    }
}

TEST(Event, AutoResetIsClearAfterOneWaitHoweverOftenItWasSet)
{
    CEvent event;
    ASSERT_EQ(event.Init(false, false), WaitResult::Taken);
    event.Set();
    event.Set();
    EXPECT_EQ(event.Wait(), WaitResult::Taken);
    EXPECT_EQ(event.Wait(0), WaitResult::TimedOut);
}

TEST(Event, ManualResetStaysSetUntilReset)
{
    CEvent event;
    ASSERT_EQ(event.Init(false, true), WaitResult::Taken);
    event.Set();
    event.Set();
    EXPECT_EQ(event.Wait(), WaitResult::Taken);
    EXPECT_EQ(event.Wait(0), WaitResult::Taken);
    event.Reset();
    EXPECT_EQ(event.Wait(0), WaitResult::TimedOut);
}

TEST(Event, ResetTakesAnUnseenSignalBack)
{
    CEvent event;
    ASSERT_EQ(event.Init(true, false), WaitResult::Taken);
    event.Reset();
    event.Reset();
    EXPECT_EQ(event.Wait(0), WaitResult::TimedOut);
}

TEST(Event, RepeatedInitChangesKindAndForgetsTheSignal)
{
    CEvent event;
    ASSERT_EQ(event.Init(true, true), WaitResult::Taken);
    ASSERT_EQ(event.Init(false, false), WaitResult::Taken);
    EXPECT_EQ(event.Wait(0), WaitResult::TimedOut);
    event.Set();
    EXPECT_EQ(event.Wait(0), WaitResult::Taken);
    EXPECT_EQ(event.Wait(0), WaitResult::TimedOut);
}

TEST(Event, RepeatedInitReachesAThreadThatIsWaiting)
{
    CEvent event;
    ASSERT_EQ(event.Init(false, false), WaitResult::Taken);
    std::jthread waiting([&] { EXPECT_EQ(event.Wait(), WaitResult::Taken); });
    EXPECT_EQ(event.Init(true, true), WaitResult::Taken);
}

TEST(Event, AWaitDoesNotEndBeforeItsTime)
{
    CEvent event;
    ASSERT_EQ(event.Init(false, false), WaitResult::Taken);
    const auto start = std::chrono::steady_clock::now();
    EXPECT_EQ(event.Wait(3), WaitResult::TimedOut);
    EXPECT_GE(std::chrono::steady_clock::now() - start, std::chrono::milliseconds(3));
}

TEST(Event, TheLongestLimitIsNoShortOne)
{
    CEvent event;
    CEvent entered;
    ASSERT_EQ(event.Init(false, false), WaitResult::Taken);
    ASSERT_EQ(entered.Init(false, false), WaitResult::Taken);
    std::jthread waiting([&] {
        entered.Set();
        EXPECT_EQ(event.Wait(NO_TIME_LIMIT - 1), WaitResult::Taken);
    });
    ASSERT_EQ(entered.Wait(), WaitResult::Taken);
    event.Set();
}

TEST(Event, OneSignalOfAnAutoResetEventGoesToOneOfManyThreads)
{
    constexpr unsigned THREADS = 4;
    constexpr unsigned ROUNDS = 300;
    CEvent event;
    ASSERT_EQ(event.Init(false, false), WaitResult::Taken);
    std::atomic<unsigned> taken = 0;
    TestSupport::CBarrier together(THREADS, [&] { event.Set(); });
    TestSupport::CBarrier done(THREADS);
    {
        std::vector<std::jthread> threads;
        for (unsigned number = 0; number < THREADS; ++number)
            threads.emplace_back([&] {
                for (unsigned round = 0; round < ROUNDS; ++round) {
                    together.ArriveAndWait();
                    if (event.Wait(0) == WaitResult::Taken)
                        ++taken;
                    done.ArriveAndWait();
                }
            });
    }
    EXPECT_EQ(taken, ROUNDS);
    EXPECT_EQ(event.Wait(0), WaitResult::TimedOut);
}

TEST(Event, EverySeenSignalWakesASleeper)
{
    constexpr unsigned THREADS = 4;
    constexpr unsigned SIGNALS = 200;
    CEvent event;
    CEvent seen;
    ASSERT_EQ(event.Init(false, false), WaitResult::Taken);
    ASSERT_EQ(seen.Init(false, false), WaitResult::Taken);
    std::atomic<unsigned> woken = 0;
    std::atomic<bool> stopping = false;
    std::vector<std::jthread> threads;
    for (unsigned number = 0; number < THREADS; ++number)
        threads.emplace_back([&] {
            while (event.Wait() == WaitResult::Taken && !stopping) {
                ++woken;
                seen.Set();
            }
            event.Set(); // the signal to stop passes from one thread to the next
        });
    for (unsigned signal = 0; signal < SIGNALS; ++signal) {
        event.Set();
        ASSERT_EQ(seen.Wait(), WaitResult::Taken);
    }
    stopping = true;
    event.Set();
    threads.clear();
    EXPECT_EQ(woken, SIGNALS);
}

TEST(Event, WhatWasWrittenBeforeTheSignalIsReadAfterTheWait)
{
    for (const bool manualReset : {false, true}) {
        CEvent written;
        ASSERT_EQ(written.Init(false, manualReset), WaitResult::Taken);
        int value = 0; // no atomic and no lock: the event alone orders the two threads
        std::thread writer([&] {
            value = 1;
            written.Set();
        });
        EXPECT_EQ(written.Wait(), WaitResult::Taken);
        EXPECT_EQ(value, 1);
        writer.join();
    }
}

TEST(Event, ManualResetReleasesEveryWaitingThread)
{
    CEvent event;
    ASSERT_EQ(event.Init(false, true), WaitResult::Taken);
    std::atomic<unsigned> released = 0;
    {
        std::vector<std::jthread> threads;
        for (unsigned number = 0; number < 4; ++number)
            threads.emplace_back([&] {
                if (event.Wait() == WaitResult::Taken)
                    ++released;
            });
        event.Set();
    }
    EXPECT_EQ(released, 4U);
}

} // namespace
