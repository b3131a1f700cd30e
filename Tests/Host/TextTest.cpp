#include "Core/Text.h"

namespace {

TEST(Text, ComparesWithoutRegardToCase)
{
    EXPECT_TRUE(Host::equalIgnoringCase("NVMe0N1", "nvme0n1"));
    EXPECT_FALSE(Host::equalIgnoringCase("nvme0", "nvme0n1"));
    EXPECT_FALSE(Host::equalIgnoringCase("[", "{"));
    EXPECT_TRUE(Host::startsWithIgnoringCase("0X1f", "0x"));
    EXPECT_FALSE(Host::startsWithIgnoringCase("0", "0x"));
}

TEST(Text, LetsNoControlCharacterThrough)
{
    EXPECT_EQ(Host::printable("a\033[31mb\nc\x7F"), "a?[31mb?c?");
    EXPECT_EQ(Host::printable("35 \u00b0C"), "35 \u00b0C");
    EXPECT_EQ(Host::printable("a\u009bb"), "a?b");
    EXPECT_EQ(Host::printableLines("a\tb\nc\r"), "a?b\nc?");
}

TEST(Text, CountsColumnsNotBytes)
{
    EXPECT_EQ(Host::displayWidth(""), 0U);
    EXPECT_EQ(Host::displayWidth("35 \u00b0C"), 5U);
}

TEST(Text, ShortensInTheMiddleAndSaysSo)
{
    EXPECT_EQ(Host::shortened("ABCDEFGHIJ", 10), "ABCDEFGHIJ");
    EXPECT_EQ(Host::shortened("ABCDEFGHIJ", 9), "ABCD\u2026GHIJ");
    EXPECT_EQ(Host::shortened("ABCDEFGHIJ", 4), "AB\u2026J");
    EXPECT_EQ(Host::shortened("ABCDEFGHIJ", 1), "\u2026");
    EXPECT_EQ(Host::shortened("ABCDEFGHIJ", 0), "");
    EXPECT_EQ(Host::shortened("\u00e4\u00f6\u00fc\u00df", 3), "\u00e4\u2026\u00df");
}

TEST(Text, WritesNumbersWithAPoint)
{
    EXPECT_EQ(Host::decimalText(1.25, 1), "1.2");
    EXPECT_EQ(Host::decimalText(-3, 0), "-3");
    EXPECT_EQ(Host::decimalText(1e300, 2).size(), 304U);
}

} // namespace
