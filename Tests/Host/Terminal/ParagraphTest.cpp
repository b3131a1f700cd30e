#include "Terminal/Paragraph.h"

namespace {

using Host::Cli::paragraph;

TEST(Paragraph, IsOneLineWhereThereIsNoTerminal)
{
    EXPECT_EQ(paragraph("one two  three", 4, {}), "one two  three\n");
    EXPECT_EQ(paragraph("", 4, {}), "\n");
}

TEST(Paragraph, BreaksBetweenWordsAndIndentsWhatFollows)
{
    EXPECT_EQ(paragraph("one two three", 2, {10, false}), "one two\n  three\n");
    EXPECT_EQ(paragraph("one two three", 2, {9, false}), "one two\n  three\n");
    EXPECT_EQ(paragraph("one two three", 2, {8, false}), "one\n  two\n  three\n");
    EXPECT_EQ(paragraph("", 2, {10, false}), "\n");
}

TEST(Paragraph, CountsColumnsAndNotBytes)
{
    EXPECT_EQ(paragraph("\u00e4\u00f6\u00fc \u00e4\u00f6\u00fc", 0, {7, false}),
              "\u00e4\u00f6\u00fc \u00e4\u00f6\u00fc\n");
}

TEST(Paragraph, AWordThatIsTooLongHasALineOfItsOwn)
{
    EXPECT_EQ(paragraph("a overlong b", 1, {4, false}), "a\n overlong\n b\n");
    EXPECT_EQ(paragraph("overlong", 6, {4, false}), "overlong\n");
}

} // namespace
