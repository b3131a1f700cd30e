#include <TLX/FastMutex.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <thread>
#include <vector>

namespace {

using namespace TLX::Threading;
using Native_OS::CFastMutex;

/** The result when another thread tries to take the lock. That thread releases the lock at once. */
std::uint32_t elsewhere(CFastMutex& mutex, std::uint32_t timeout)
{
    std::uint32_t result = 0;
    std::thread([&] {
        result = mutex.Wait(timeout);
        if (result == WaitResult::Taken)
            mutex.Release();
    }).join();
    return result;
}

TEST(FastMutex, BeforeInitAWaitFailsAtOnceAndAReleaseDoesNothing)
{
    CFastMutex mutex;
    EXPECT_EQ(mutex.Wait(), WaitResult::Failed);
    EXPECT_EQ(mutex.Wait(0), WaitResult::Failed);
    mutex.Release();
    const CScopedGuard guard(mutex);
}

TEST(FastMutex, IsTakenOnceAndGivenBack)
{
    CFastMutex mutex;
    ASSERT_EQ(mutex.Init(), WaitResult::Taken);
    ASSERT_EQ(mutex.Wait(), 1U);
    EXPECT_EQ(elsewhere(mutex, 0), 130U);
    EXPECT_EQ(elsewhere(mutex, 2), 130U);
    mutex.Release();
    EXPECT_EQ(elsewhere(mutex, 0), 1U);
    EXPECT_EQ(elsewhere(mutex, 60'000), 1U);
}

TEST(FastMutex, ItsOwnerTakesItAgainAndReleasesItAsOften)
{
    CFastMutex mutex;
    ASSERT_EQ(mutex.Init(), WaitResult::Taken);
    ASSERT_EQ(mutex.Wait(), WaitResult::Taken);
    ASSERT_EQ(mutex.Wait(0), WaitResult::Taken);
    mutex.Release();
    EXPECT_EQ(elsewhere(mutex, 0), WaitResult::TimedOut);
    mutex.Release();
    EXPECT_EQ(elsewhere(mutex, 0), WaitResult::Taken);
}

TEST(FastMutex, RepeatedInitLeavesALockThatIsReadyAsItIs)
{
    CFastMutex mutex;
    ASSERT_EQ(mutex.Init(), WaitResult::Taken);
    ASSERT_EQ(mutex.Wait(), WaitResult::Taken);
    EXPECT_EQ(mutex.Init(), WaitResult::Taken);
    EXPECT_EQ(elsewhere(mutex, 0), WaitResult::TimedOut);
    mutex.Release();
}

TEST(FastMutex, KeepsManyThreadsApart)
{
    constexpr unsigned THREADS = 6;
    constexpr unsigned ROUNDS = 2'000;
    CFastMutex mutex;
    ASSERT_EQ(mutex.Init(), WaitResult::Taken);
    unsigned plain = 0;
    {
        std::vector<std::jthread> threads;
        for (unsigned number = 0; number < THREADS; ++number)
            threads.emplace_back([&] {
                for (unsigned round = 0; round < ROUNDS; ++round) {
                    const CScopedGuard outer(mutex);
                    const CScopedGuard inner(mutex);
                    ++plain;
                }
            });
    }
    EXPECT_EQ(plain, THREADS * ROUNDS);
}

TEST(ScopedGuard, HoldsTheLockForItsScope)
{
    CFastMutex mutex;
    ASSERT_EQ(mutex.Init(), WaitResult::Taken);
    {
        const CScopedGuard guard(mutex);
        EXPECT_EQ(elsewhere(mutex, 0), WaitResult::TimedOut);
    }
    EXPECT_EQ(elsewhere(mutex, 0), WaitResult::Taken);
}

TEST(ScopedGuard, ThatGotNothingGivesNothingBack)
{
    CFastMutex mutex;
    {
        const CScopedGuard guard(mutex);
        ASSERT_EQ(mutex.Init(), WaitResult::Taken);
        ASSERT_EQ(mutex.Wait(), WaitResult::Taken);
    }
    EXPECT_EQ(elsewhere(mutex, 0), WaitResult::TimedOut);
    mutex.Release();
}

} // namespace
