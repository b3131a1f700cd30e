#include "Utf8.h"

#include <boost/locale/utf.hpp>

namespace TLX::Internals {
namespace {

/** The character at the beginning of a text. */
struct CCharacter
{
    bool m_Valid;         ///< false: the first byte does not begin a well-formed UTF-8 sequence
    char32_t m_CodePoint; ///< the byte itself when the sequence is not valid
    std::size_t m_Length; ///< in bytes; 1 for an invalid byte
};

/** The first character of `text`, which is not empty. */
CCharacter firstCharacter(std::string_view text)
{
    namespace utf = boost::locale::utf;
    const char* position = text.data();
    const utf::code_point codePoint = utf::utf_traits<char>::decode(position, text.data() + text.size());
    if (codePoint == utf::illegal || codePoint == utf::incomplete)
        return {false, static_cast<unsigned char>(text.front()), 1};
    return {true, codePoint, static_cast<std::size_t>(position - text.data())};
}

bool isControl(char32_t codePoint)
{
    return codePoint < 0x20 || (codePoint >= 0x7F && codePoint < 0xA0);
}

void appendEscaped(std::string& result, char byte)
{
    static constexpr char DIGITS[] = "0123456789abcdef";
    const auto value = static_cast<unsigned char>(byte);
    switch (byte) {
    case '\n':
        result += "\\n";
        break;
    case '\r':
        result += "\\r";
        break;
    case '\t':
        result += "\\t";
        break;
    default:
        result += "\\x";
        result += DIGITS[value >> 4U];
        result += DIGITS[value & 0xFU];
    }
}

} // namespace

bool isUtf8(std::string_view text)
{
    while (!text.empty()) {
        const CCharacter character = firstCharacter(text);
        if (!character.m_Valid)
            return false;
        text.remove_prefix(character.m_Length);
    }
    return true;
}

std::string escapeControls(std::string_view text)
{
    std::string result;
    result.reserve(text.size());
    while (!text.empty()) {
        const CCharacter character = firstCharacter(text);
        const std::string_view bytes = text.substr(0, character.m_Length);
        if (character.m_Valid && !isControl(character.m_CodePoint)) {
            result += bytes;
        } else {
            for (const char byte : bytes)
                appendEscaped(result, byte);
        }
        text.remove_prefix(character.m_Length);
    }
    return result;
}

} // namespace TLX::Internals
