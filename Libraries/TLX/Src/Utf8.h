#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace TLX::Internals {

/** A character at the head of a text. */
struct CCharacter
{
    bool m_Valid;         ///< false: the first byte does not begin a well-formed UTF-8 sequence
    char32_t m_CodePoint; ///< the byte when it is not valid
    std::size_t m_Length; ///< in bytes; 1 when it is not valid
};

/** The first character of `text`, which is not empty. */
CCharacter firstCharacter(std::string_view text);

/** Whether the whole text is well-formed UTF-8. */
bool isUtf8(std::string_view text);

/** The text with control characters and bytes outside UTF-8 as "\n", "\r", "\t" or "\xNN". */
std::string escapeControls(std::string_view text);

} // namespace TLX::Internals
