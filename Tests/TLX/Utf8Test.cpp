#include <TLX/Utf8.h>

#include <gtest/gtest.h>

namespace {

using TLX::Misc::CUtf8Character;
using TLX::Misc::firstCharacter;
using TLX::Misc::isUtf8;

TEST(Utf8Test, TakesWholeCharactersFromTheHeadOfAText)
{
    const struct
    {
        std::string_view m_Text;
        char32_t m_CodePoint;
        std::size_t m_Length;
    } cases[] = {{"ab", U'a', 1},
                 {"\u00b0C", U'\u00b0', 2},
                 {"\u20ac", U'\u20ac', 3},
                 {"\U0001F600x", U'\U0001F600', 4}};
    for (const auto& expected : cases) {
        const CUtf8Character character = firstCharacter(expected.m_Text);
        EXPECT_TRUE(character.m_Valid) << expected.m_Text;
        EXPECT_EQ(character.m_CodePoint, expected.m_CodePoint) << expected.m_Text;
        EXPECT_EQ(character.m_Length, expected.m_Length) << expected.m_Text;
        EXPECT_FALSE(character.IsControl()) << expected.m_Text;
    }
}

TEST(Utf8Test, TakesOneByteOfWhatIsNotWellFormed)
{
    // A lone trail byte, a torn sequence, overlong forms, a surrogate, a number that is too large, no lead
    // byte.
    for (const std::string_view text :
         {"\x80", "\xE2\x82", "\xC0\x8A", "\xE0\x80\x8A", "\xED\xA0\x80", "\xF4\x90\x80\x80", "\xFF"}) {
        const CUtf8Character character = firstCharacter(text);
        EXPECT_FALSE(character.m_Valid);
        EXPECT_EQ(character.m_CodePoint, static_cast<unsigned char>(text.front()));
        EXPECT_EQ(character.m_Length, 1U);
        EXPECT_FALSE(isUtf8(text));
        EXPECT_FALSE(isUtf8("good " + std::string(text)));
    }
    EXPECT_TRUE(isUtf8(""));
    EXPECT_TRUE(isUtf8("good \u20ac"));
}

TEST(Utf8Test, KnowsControlCharacters)
{
    for (const std::string_view text : {"\x1F", "\n", "\x7F", "\u0080", "\u009F"})
        EXPECT_TRUE(firstCharacter(text).IsControl());
    for (const std::string_view text : {" ", "~", "\u00A0"})
        EXPECT_FALSE(firstCharacter(text).IsControl());
}

} // namespace
