#include <PI/CaptionId.h>
#include <PI/PluginHelper.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <limits>
#include <string>
#include <variant>
#include <vector>

namespace {

using PI::CPluginHelper;

constexpr std::uint64_t UNKNOWN = std::numeric_limits<std::uint64_t>::max();
constexpr std::uint64_t TIB = std::uint64_t{1} << 40;
constexpr std::uint64_t UNLIMITED = 876000; // a hundred years

TEST(GenerateCProperty, TakesTheWholeDescription)
{
    const PI::_PROPERTY_DESCRIPTION description{
        PI::PROP_DRIVE_CHANNEL, PI::DRIVE_CAPTION_CHANNEL, 1, 2, 4, PI::KIND_NUMBER, PI::UNIT_MIB, 1};
    PI::CProperty property;
    CPluginHelper::GenerateCProperty(description, property);
    EXPECT_EQ(property.Id(), PI::PROP_DRIVE_CHANNEL);
    EXPECT_EQ(property.NlsID(), PI::DRIVE_CAPTION_CHANNEL);
    EXPECT_EQ(property.Kind(), 5U);
    EXPECT_EQ(property.Units(), PI::UNIT_MIB);
    EXPECT_EQ(property.Description().attrA, 1U);
    EXPECT_EQ(property.Description().attrB, 2U);
    EXPECT_EQ(property.Description().attrC, 4U);
    EXPECT_EQ(property.Description().attrD, 1U);
}

TEST(GenerateCProperty, ClearsWhatWasThere)
{
    PI::CProperty property(PI::PROP_POLL_INTERVAL, true);
    property.SetValue(60, 2, 255, 1);
    property.SetNlsID(PI::SHOWN_CAPTION_AVAILABLE_SPARE);
    property.SetUnits(PI::UNIT_TIB);
    property.SetSubType(8);
    property.SetIconPathID(PI::ICON_ADAPTER_DEGRADED);
    CPluginHelper::GenerateCProperty(
        {PI::PROP_NAME, PI::CAPTION_NAME, 1, 1, 0, PI::KIND_TEXT, PI::UNIT_NONE, 1}, property);
    EXPECT_TRUE(std::holds_alternative<std::monostate>(property.GetValue()));
    EXPECT_FALSE(property.Settable());
    EXPECT_EQ(property.Id(), PI::PROP_NAME);
    EXPECT_EQ(property.NlsID(), PI::CAPTION_NAME);
    EXPECT_EQ(property.Units(), 1U);
    EXPECT_EQ(property.SubType(), 0U);
    EXPECT_EQ(property.IconPathID(), 0U);
}

struct ConvertCase
{
    std::uint64_t bytes;
    float value;
    PI::_UNITS units;
};

TEST(ConvertBytesToOtherUnit, PicksTheLargestUnitThatGivesAtLeastOne)
{
    constexpr std::uint64_t ONE = 1;
    const ConvertCase cases[] = {
        {0, 0.0F, PI::UNIT_BYTES},
        {1, 1.0F, PI::UNIT_BYTES},
        {1023, 1023.0F, PI::UNIT_BYTES},
        {1024, 1.0F, PI::UNIT_KIB},
        {1536, 1.5F, PI::UNIT_KIB},
        {(ONE << 20) - 1, 1048575.0F / 1024.0F, PI::UNIT_KIB},
        {ONE << 20, 1.0F, PI::UNIT_MIB},
        {(ONE << 30) - 1, 1024.0F, PI::UNIT_MIB},
        {ONE << 30, 1.0F, PI::UNIT_GIB},
        {(ONE << 40) - 1, 1024.0F, PI::UNIT_GIB},
        {ONE << 40, 1.0F, PI::UNIT_TIB},
        {5 * (ONE << 38), 1.25F, PI::UNIT_TIB},
        {(ONE << 50) - 1, 1024.0F, PI::UNIT_TIB},
        {ONE << 50, 1.0F, PI::UNIT_PIB},
        {(ONE << 60) - 1, 1024.0F, PI::UNIT_PIB},
        {ONE << 60, 1.0F, PI::UNIT_EIB},
        {UNKNOWN - 1, 16.0F, PI::UNIT_EIB},
    };
    for (const auto& [bytes, expected, expectedUnits] : cases) {
        float value = -7.0F;
        auto units = PI::UNIT_NONE;
        EXPECT_TRUE(CPluginHelper::ConvertBytesToOtherUnit(bytes, value, units)) << bytes;
        EXPECT_EQ(value, expected) << bytes;
        EXPECT_EQ(units, expectedUnits) << bytes;
    }
}

TEST(ConvertBytesToOtherUnit, LeavesTheResultAloneForAnUnknownAmount)
{
    float value = -7.0F;
    auto units = PI::UNIT_HOURS;
    EXPECT_FALSE(CPluginHelper::ConvertBytesToOtherUnit(UNKNOWN, value, units));
    EXPECT_EQ(value, -7.0F);
    EXPECT_EQ(units, PI::UNIT_HOURS);
}

struct LifeCase
{
    const char* what;
    std::uint64_t hours;
    std::uint64_t bytesWritten;
    std::uint64_t wear;
    std::uint64_t rating;
    std::uint64_t remaining;
    bool known;
};

void expectLives(const std::vector<LifeCase>& cases)
{
    for (const auto& test : cases) {
        std::uint64_t remaining = 1;
        EXPECT_EQ(CPluginHelper::ComputeRemainingLifeTime(test.hours, test.bytesWritten, test.wear,
                                                          test.rating, remaining),
                  test.known)
            << test.what;
        EXPECT_EQ(remaining, test.remaining) << test.what;
    }
}

TEST(ComputeRemainingLifeTime, TakesTheShorterOfWritingAndWear)
{
    expectLives({
        {"writing alone", 1000, 10 * TIB, 0, 100, 9000, true},
        {"writing, wear not known as 100", 1000, 10 * TIB, 100, 100, 9000, true},
        {"wear alone", 1000, 10 * TIB, 10, 1, 9000, true},
        {"wear is shorter", 1000, 10 * TIB, 50, 100, 1000, true},
        {"writing is shorter", 1000, 50 * TIB, 10, 100, 1000, true},
        {"results are cut to whole hours", 1000, 3 * TIB, 0, 10, 2333, true},
        {"one percent left", 990, 0, 99, 1, 10, true},
        {"one percent used", 10, 0, 1, 1, 990, true},
    });
}

TEST(ComputeRemainingLifeTime, IsOverWhenALimitHasPassed)
{
    expectLives({
        {"exactly all written", 1000, 100 * TIB, 0, 100, 0, true},
        {"more than all written", 1000, 200 * TIB, 0, 100, 0, true},
        {"all written although wear is low", 1000, 100 * TIB, 1, 100, 0, true},
        {"wear above a hundred", 1000, TIB, 101, 100, 0, true},
        {"as much wear as a drive can report", 1000, TIB, 255, 1, 0, true},
        {"passed before the first hour", 0, 3 * TIB, 0, 2, 0, true},
        {"exactly all written before the first hour", 0, 2 * TIB, 0, 2, 0, true},
        {"one byte below the limit", 1000, 100 * TIB - 1, 0, 100, 0, true},
        {"as many bytes as there are", 1, UNKNOWN - 1, 0, 2, 0, true},
    });
}

TEST(ComputeRemainingLifeTime, IsUnlimitedWithoutInformation)
{
    expectLives({
        {"unrated, wear not known", 1000, 10 * TIB, 100, 1, UNLIMITED, false},
        {"no wear", 1000, 10 * TIB, 0, 1, UNLIMITED, false},
        {"rating 0", 1000, 10 * TIB, 0, 0, UNLIMITED, false},
        {"rating not known", 1000, 10 * TIB, 0, UNKNOWN, UNLIMITED, false},
        {"bytes not known", 1000, UNKNOWN, 0, 100, UNLIMITED, false},
        {"no hours", 0, 10 * TIB, 50, 100, UNLIMITED, false},
        {"hours not known", UNKNOWN, 10 * TIB, 50, 100, UNLIMITED, false},
        {"wear beyond a byte", 1000, 0, 256, 1, UNLIMITED, false},
        {"wear from a difference below zero", 1000, 0, 0xFFFFFF9CU, 1, UNLIMITED, false},
        {"wear of all ones", 1000, 0, UNKNOWN, 1, UNLIMITED, false},
        {"nothing at all", UNKNOWN, UNKNOWN, UNKNOWN, UNKNOWN, UNLIMITED, false},
        {"all zero", 0, 0, 0, 0, UNLIMITED, false},
    });
}

TEST(ComputeRemainingLifeTime, IsCapped)
{
    expectLives({
        {"nothing written yet", 1000, 0, 0, 100, UNLIMITED, true},
        {"one byte written", 1000, 1, 0, 100, UNLIMITED, true},
        {"just below the cap", UNLIMITED - 1, TIB, 0, 2, UNLIMITED - 1, true},
        {"at the cap", UNLIMITED, TIB, 0, 2, UNLIMITED, true},
        {"above the cap", UNLIMITED + 1, TIB, 0, 2, UNLIMITED, true},
        {"products beyond 64 bits", UNKNOWN - 1, 1, 1, UNKNOWN - 1, UNLIMITED, true},
        {"long hours at high wear", UNKNOWN - 1, 0, 99, 1, UNLIMITED, true},
    });
}

} // namespace
