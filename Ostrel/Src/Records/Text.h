#pragma once

#include <array>
#include <charconv>
#include <concepts>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>

namespace NAMESPACE_Ostrel {

/** Whether two texts of the same length are equal without regard to case, whatever the process's locale. */
bool equalIgnoringCase(std::string_view left, std::string_view right);

/** The argument of one conversion in a format. */
class CFormatArgument
{
public:
    CFormatArgument(std::integral auto number)
    {
        char* const begin = m_Digits.data();
        m_Text = {begin, std::to_chars(begin, begin + m_Digits.size(), number).ptr};
    }
    CFormatArgument(const std::string& text) : m_Text(text) {}
    CFormatArgument(const CFormatArgument&) = delete;
    CFormatArgument& operator=(const CFormatArgument&) = delete;

    std::string_view Text() const { return m_Text; }

private:
    std::array<char, 24> m_Digits = {};
    std::string_view m_Text;
};

/** The implementation of `formatted`; use that. */
std::string formattedText(std::string_view format, std::initializer_list<CFormatArgument> arguments);

/**
 * Formats a text like `printf`, but ignores the process's locale, which may group digits. It knows the
 * conversions %s and %d, with a width and the flag 0. There must be as many arguments as conversions.
 */
template<typename... Arguments>
std::string formatted(std::string_view format, const Arguments&... arguments)
{
    return formattedText(format, {CFormatArgument(arguments)...});
}

} // namespace NAMESPACE_Ostrel
