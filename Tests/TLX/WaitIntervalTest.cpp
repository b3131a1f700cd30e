#include "Support/VirtualClock.h"

#include <TLX/WaitInterval.h>

#include <gtest/gtest.h>

#include <cstdint>

namespace {

using TestSupport::CVirtualClock;
using TLX::Threading::CWaitInterval;

TEST(WaitInterval, RunsOutAfterItsDuration)
{
    CVirtualClock clock;
    clock.Advance(7);
    const CWaitInterval interval(100);
    EXPECT_EQ(interval.End(), 107U);
    EXPECT_EQ(interval.Remaining(), 100U);
    clock.Advance(99);
    EXPECT_EQ(interval.Remaining(), 1U);
    clock.Advance(1);
    EXPECT_EQ(interval.Remaining(), 0U);
    clock.Advance(1);
    EXPECT_EQ(interval.Remaining(), 0U);
}

TEST(WaitInterval, BeginsAnewAtRestart)
{
    CVirtualClock clock;
    CWaitInterval interval(100);
    clock.Advance(60);
    constexpr std::uint64_t LONGEST = 0xFFFFFFFFULL * 1000;
    interval.Restart(LONGEST);
    EXPECT_EQ(interval.Remaining(), LONGEST);
    interval.Restart(0);
    EXPECT_EQ(interval.Remaining(), 0U);
}

} // namespace
