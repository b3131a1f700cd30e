#include "EscapeControls.h"

#include <TLX/Utf8.h>

namespace TLX::Internals {
namespace {

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

std::string escapeControls(std::string_view text)
{
    std::string result;
    result.reserve(text.size());
    while (!text.empty()) {
        const Misc::CUtf8Character character = Misc::firstCharacter(text);
        const std::string_view bytes = text.substr(0, character.m_Length);
        if (character.m_Valid && !character.IsControl()) {
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
