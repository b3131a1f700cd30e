#include "Base/Instant.h"

#include "Base/Time.h"

#include <gmock/gmock.h>

#include <string>

namespace {

using Host::parseInstant;

constexpr std::uint64_t NOW = 1'767'225'600'000; // 2026-01-01T00:00:00Z

TEST(InstantTest, ReadsUtcAndOffsets)
{
    EXPECT_EQ(parseInstant("2026-01-01T00:00:00Z", 0), NOW);
    EXPECT_EQ(parseInstant("2026-01-01T00:00:00.999Z", 0), NOW);
    EXPECT_EQ(parseInstant("2026-01-01 00:01Z", 0), NOW + 60'000);
    EXPECT_EQ(parseInstant("2026-01-01T01:00:00+01:00", 0), NOW);
    EXPECT_EQ(parseInstant("2025-12-31T18:30:00-05:30", 0), NOW);
    EXPECT_EQ(parseInstant("2024-02-29T00:00Z", 0), 1'709'164'800'000U);
}

TEST(InstantTest, ReadsTimesOfThisMachine)
{
    for (const std::uint64_t time : {NOW, NOW + std::uint64_t{181} * 86'400'000}) {
        const std::string local = Host::localTimeText(time);
        EXPECT_EQ(parseInstant(local, 0), time);
        std::string iso = local;
        iso[10] = 'T';
        EXPECT_EQ(parseInstant(iso, 0), time);
        EXPECT_EQ(parseInstant(local.substr(0, 10) + " 00:00", 0), parseInstant(local.substr(0, 10), 0));
    }
}

TEST(InstantTest, ReadsTimesBeforeNow)
{
    EXPECT_EQ(parseInstant("5s", NOW), NOW - 5'000);
    EXPECT_EQ(parseInstant("90m", NOW), NOW - 90 * 60'000);
    EXPECT_EQ(parseInstant("2h", NOW), NOW - 2 * 3'600'000);
    EXPECT_EQ(parseInstant("7d", NOW), NOW - 7 * 86'400'000ULL);
    EXPECT_EQ(parseInstant("1w", NOW), NOW - 7 * 86'400'000ULL);
    EXPECT_EQ(parseInstant("999999d", NOW), 0U) << "long before 1970";
}

TEST(InstantTest, RefusesOtherTexts)
{
    for (const char* text : {"",
                             "x",
                             "h",
                             "-1h",
                             "1y",
                             "1 h",
                             "18446744073709551615w",
                             "2026",
                             "2026-1-1",
                             "2026-13-01",
                             "2026-02-29",
                             "2026-01-32",
                             "2026-01-01T",
                             "2026-01-01T24:00",
                             "2026-01-01T00:60",
                             "2026-01-01T00:00:",
                             "2026-01-01T00:00:60Z",
                             "2026-01-01T00:00Zx",
                             "2026-01-01x00:00Z",
                             "2026-01-01T00:00+1",
                             "2026-01-01T00:00:00.5+01:00x",
                             "1969-12-31T23:59Z",
                             "20260101"})
        EXPECT_EQ(parseInstant(text, NOW), std::nullopt) << text;
}

} // namespace
