#include "Base/Text.h"

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

TEST(Text, LetsNothingThroughThatIsNoUtf8)
{
    const std::string whole = "\u00a0 \u20ac \U0001F600 \uD7FF \uE000 \U0010FFFF";
    EXPECT_EQ(Host::printable(whole), whole);
    EXPECT_EQ(Host::printable("a\x9B\x80 31m"), "a?? 31m");
    EXPECT_EQ(Host::printable("\xC3"), "?");
    EXPECT_EQ(Host::printable("\xC3 x"), "? x");
    EXPECT_EQ(Host::printable("\xE2\x82"), "??");
    EXPECT_EQ(Host::printable("\xE2\x82\nx"), "???x");
    // Longer forms than needed, among them those of a control character; surrogates; beyond the last
    // character.
    EXPECT_EQ(Host::printable("\xC0\x8A"), "??");
    EXPECT_EQ(Host::printable("\xE0\x80\x8A"), "???");
    EXPECT_EQ(Host::printable("\xF0\x82\x82\xAC"), "????");
    EXPECT_EQ(Host::printable("\xED\xA0\x80"), "???");
    EXPECT_EQ(Host::printable("\xF4\x90\x80\x80"), "????");
    EXPECT_EQ(Host::printable("\xF8\x88\x80\x80\x80\xFE\xFF"), "???????");
}

TEST(Text, ReadsNumbersThatAreTheWholeText)
{
    EXPECT_EQ(Host::parseNumber("010", 10), 10U);
    EXPECT_EQ(Host::parseNumber("fF", 16), 255U);
    EXPECT_EQ(Host::parseNumber("18446744073709551615", 10), ~0ULL);
    for (const char* text : {"", "18446744073709551616", "-1", "+1", " 1", "1 ", "0x1"})
        EXPECT_EQ(Host::parseNumber(text, 10), std::nullopt) << text;
    EXPECT_EQ(Host::parseHexadecimal("0x1F"), 31U);
    EXPECT_EQ(Host::parseHexadecimal("0XffffFFFFffffFFFF"), ~0ULL);
    for (const char* text : {"", "0x", "1F", "0x10000000000000000", "0x0x1", "0x-1", "0xG"})
        EXPECT_EQ(Host::parseHexadecimal(text), std::nullopt) << text;
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
