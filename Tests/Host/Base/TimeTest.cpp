#include "Base/Time.h"

#include <gtest/gtest.h>

namespace {

using namespace Host;

constexpr std::uint64_t NEW_YEAR = 1'767'225'600'000; // 2026

TEST(TimeText, IsLocalToTheSecond)
{
    const std::string text = localTimeText(NEW_YEAR + 59'999);
    ASSERT_EQ(text.size(), 19U);
    EXPECT_TRUE(text.starts_with("2025-12-31 ") || text.starts_with("2026-01-01 ")) << text;
    EXPECT_EQ(text.substr(16), ":59") << "no zone is off by seconds";
    EXPECT_EQ(timeOfDayText(NEW_YEAR + 59'999), text.substr(11));
}

} // namespace
