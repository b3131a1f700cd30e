#include <TLXX/NvmeText.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <string_view>
#include <vector>

namespace {

using namespace std::string_view_literals;

std::string bounded(std::string_view bytes)
{
    return TLXX::boundedText(std::vector<std::uint8_t>(bytes.begin(), bytes.end()));
}

TEST(NvmeTextTest, KeepsPrintableAscii)
{
    EXPECT_EQ(bounded("SSD 980 PRO!~"), "SSD 980 PRO!~");
}

TEST(NvmeTextTest, TrimsWhiteSpaceFromBothEndsOnly)
{
    EXPECT_EQ(bounded("   two  words    "), "two  words");
    EXPECT_EQ(bounded(" \t\r\n\v\ftwo  words \t\r\n\v\f"), "two  words");
    EXPECT_EQ(bounded("\n\0x"sv), "");
}

TEST(NvmeTextTest, NothingButPaddingIsNoText)
{
    EXPECT_EQ(bounded("                    "), "");
    EXPECT_EQ(bounded("\0\0\0\0"sv), "");
    EXPECT_EQ(bounded("   \0SECRET"sv), "");
    EXPECT_EQ(bounded(""), "");
    EXPECT_EQ(TLXX::boundedText({}), "");
}

TEST(NvmeTextTest, EndsAtTheFirstNul)
{
    EXPECT_EQ(bounded("SER\0IAL"sv), "SER");
    EXPECT_EQ(bounded("SER  \0IAL"sv), "SER");
    EXPECT_EQ(bounded("\0SERIAL"sv), "");
}

TEST(NvmeTextTest, EndsWithTheFieldWhenThereIsNoTerminator)
{
    const std::array<std::uint8_t, 8> memory = {'A', 'B', 'C', 'D', 'E', 'F', 'G', 'H'};
    EXPECT_EQ(TLXX::boundedText(std::span(memory).first(4)), "ABCD");
}

TEST(NvmeTextTest, ReplacesEveryByteOutsidePrintableAscii)
{
    for (unsigned byte = 1; byte <= 0xFF; ++byte) {
        const std::array<std::uint8_t, 3> field = {'<', static_cast<std::uint8_t>(byte), '>'};
        const bool printable = byte >= 0x20 && byte <= 0x7E;
        const std::string middle(1, printable ? static_cast<char>(byte) : '?');
        EXPECT_EQ(TLXX::boundedText(field), "<" + middle + ">") << "byte " << byte;
    }
}

TEST(NvmeTextTest, OtherControlBytesAtTheEndsAreNoPadding)
{
    EXPECT_EQ(bounded("\x07 A \x1B[2J\x7F"), "? A ?[2J?");
    EXPECT_EQ(bounded("\xFF\xFF\xFF\xFF"), "????");
}

} // namespace
