#include <DatabaseORM/ValueText.h>

#include <gtest/gtest.h>

#include <limits>

using DatabaseORM::escapeQuotes;
using DatabaseORM::readValue;
using DatabaseORM::valueText;

TEST(ValueText, Of32BitIntegers)
{
    EXPECT_EQ(valueText(std::int32_t{0}), "0");
    EXPECT_EQ(valueText(std::int32_t{-2147483647}), "-2147483647");
    EXPECT_EQ(valueText(std::int32_t{2147483647}), "2147483647");
    EXPECT_EQ(valueText(std::numeric_limits<std::int32_t>::min()), "NULL");
}

TEST(ValueText, Of64BitIntegersHasNoNull)
{
    EXPECT_EQ(valueText(std::int64_t{-1}), "-1");
    EXPECT_EQ(valueText(std::int64_t{-2147483648}), "-2147483648");
    EXPECT_EQ(valueText(std::numeric_limits<std::int64_t>::min()), "-9223372036854775808");
}

TEST(ValueText, OfDoublesHasSixDecimals)
{
    EXPECT_EQ(valueText(1.5), "1.500000");
    EXPECT_EQ(valueText(-0.0000004), "-0.000000");
    EXPECT_EQ(valueText(2.0 / 3.0), "0.666667");
    EXPECT_EQ(valueText(1e20), "100000000000000000000.000000");
    EXPECT_EQ(valueText(-std::numeric_limits<double>::max()).size(), 1U + 309U + 1U + 6U);
}

TEST(ValueText, OfTexts)
{
    EXPECT_EQ(valueText(std::string("NULL")), "NULL");
    EXPECT_EQ(valueText(std::string("NULL ")), "'NULL '");
    EXPECT_EQ(valueText(std::string("null")), "'null'");
    EXPECT_EQ(valueText(std::string("it's")), "'it's'");
}

TEST(ValueText, ReadsNumbersUpToWhatFollowsThem)
{
    std::int32_t integer = 0;
    std::int64_t bigInteger = 0;
    double number = 0;
    readValue(" +12abc", integer);
    readValue("-7.5", bigInteger);
    readValue(" 2.5x", number);
    EXPECT_EQ(integer, 12);
    EXPECT_EQ(bigInteger, -7);
    EXPECT_EQ(number, 2.5);
}

TEST(ValueText, ReadsTheBounds)
{
    std::int32_t integer = 0;
    std::int64_t bigInteger = 0;
    readValue("2147483647", integer);
    readValue("-9223372036854775808", bigInteger);
    EXPECT_EQ(integer, 2147483647);
    EXPECT_EQ(bigInteger, std::numeric_limits<std::int64_t>::min());
    readValue("-2147483649", integer);
    readValue("9223372036854775808", bigInteger);
    EXPECT_EQ(integer, DatabaseORM::NULL_INTEGER);
    EXPECT_EQ(bigInteger, DatabaseORM::NULL_BIG_INTEGER);
}

TEST(ValueText, ReadsBlankTextAsNoNumber)
{
    double number = 0;
    readValue("  ", number);
    EXPECT_EQ(number, DatabaseORM::NULL_DOUBLE);
    readValue("", number);
    EXPECT_EQ(number, DatabaseORM::NULL_DOUBLE);
}

TEST(ValueText, EscapeDoublesEverySingleQuote)
{
    EXPECT_EQ(escapeQuotes(""), "");
    EXPECT_EQ(escapeQuotes("plain \"text\""), "plain \"text\"");
    EXPECT_EQ(escapeQuotes("'"), "''");
    EXPECT_EQ(escapeQuotes("x');DROP TABLE PD;--"), "x'');DROP TABLE PD;--");
    EXPECT_EQ(escapeQuotes("''"), "''''");
}
