#include "Base/Repetition.h"

#include "Support/VirtualClock.h"

#include <gtest/gtest.h>

namespace {

TEST(RepetitionTest, LastsForAnHourWithoutTheMessage)
{
    constexpr std::uint64_t minute = 60'000;
    TestSupport::CVirtualClock clock;
    Host::Repetition repetition;
    EXPECT_TRUE(repetition.isNew("a"));
    EXPECT_FALSE(repetition.isNew("a"));
    EXPECT_TRUE(repetition.isNew("b"));
    clock.Advance(59 * minute);
    EXPECT_FALSE(repetition.isNew("a"));
    clock.Advance(59 * minute);
    EXPECT_FALSE(repetition.isNew("a"));
    EXPECT_TRUE(repetition.isNew("b"));
    clock.Advance(60 * minute);
    EXPECT_TRUE(repetition.isNew("a"));
}

} // namespace
