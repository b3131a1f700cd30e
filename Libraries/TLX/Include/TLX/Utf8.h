#pragma once

#include <TLX/Export.h>

#include <cstddef>
#include <string_view>

namespace TLX::Misc {

/** A character at the head of a text in UTF-8. */
struct CUtf8Character
{
    bool m_Valid;         ///< false: the first byte does not begin a well-formed sequence
    char32_t m_CodePoint; ///< the byte when it is not valid
    std::size_t m_Length; ///< in bytes; 1 when it is not valid

    /** Whether a terminal may obey it instead of showing it. */
    bool IsControl() const { return m_CodePoint < 0x20 || (m_CodePoint >= 0x7F && m_CodePoint < 0xA0); }
};

/** The first character of `text`, which must not be empty. */
TLX_EXPORT CUtf8Character firstCharacter(std::string_view text);

/** Whether the whole text is well-formed UTF-8. */
TLX_EXPORT bool isUtf8(std::string_view text);

} // namespace TLX::Misc
