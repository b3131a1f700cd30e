#include <TLXX/IntelLogs.h>

#include <gtest/gtest.h>

namespace {

using TLXX::ETemperatureMargin;

ETemperatureMargin marginAt(std::uint8_t byte0, std::uint8_t byte104)
{
    TLXX::VendorLogPage page{};
    page[0] = byte0;
    page[104] = byte104;
    return TLXX::temperatureMargin(page);
}

TEST(IntelLogs, TheMarginOfTheTemperatureGoesByTheDifferenceOfTwoBytes)
{
    EXPECT_EQ(marginAt(0, 0), ETemperatureMargin::Safe);
    EXPECT_EQ(marginAt(97, 20), ETemperatureMargin::Safe);
    EXPECT_EQ(marginAt(98, 20), ETemperatureMargin::NearCritical);
    EXPECT_EQ(marginAt(99, 20), ETemperatureMargin::NearCritical);
    EXPECT_EQ(marginAt(100, 20), ETemperatureMargin::Critical);
    EXPECT_EQ(marginAt(103, 20), ETemperatureMargin::Critical);
    EXPECT_EQ(marginAt(104, 20), ETemperatureMargin::AboveCritical);
    EXPECT_EQ(marginAt(255, 0), ETemperatureMargin::AboveCritical);
    EXPECT_EQ(marginAt(20, 21), ETemperatureMargin::Safe);
    EXPECT_EQ(marginAt(0, 255), ETemperatureMargin::Safe);
    EXPECT_EQ(marginAt(0, 178), ETemperatureMargin::Safe);
}

} // namespace
