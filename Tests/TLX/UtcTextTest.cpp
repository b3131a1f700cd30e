#include <TLX/UtcText.h>

#include <gtest/gtest.h>

#include <limits>

namespace {

using TLX::Misc::utcText;

TEST(UtcTextTest, HasDateTimeAndMilliseconds)
{
    EXPECT_EQ(utcText(0), "1970-01-01T00:00:00.000Z");
    EXPECT_EQ(utcText(1'709'251'199'007), "2024-02-29T23:59:59.007Z");
    EXPECT_EQ(utcText(1'767'225'600'000), "2026-01-01T00:00:00.000Z");
}

TEST(UtcTextTest, EndsWithTheYear9999)
{
    EXPECT_EQ(utcText(253'402'300'799'999), "9999-12-31T23:59:59.999Z");
    EXPECT_EQ(utcText(253'402'300'800'000), "9999-12-31T23:59:59.999Z");
    EXPECT_EQ(utcText(std::numeric_limits<std::uint64_t>::max()), "9999-12-31T23:59:59.999Z");
}

} // namespace
