#pragma once

#include <array>
#include <charconv>
#include <concepts>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>

namespace NAMESPACE_Ostrel {

/** Whether two texts of one length are the same but for the case of letters, whatever the process's locale.
 */
bool equalIgnoringCase(std::string_view left, std::string_view right);

/** What stands in for one conversion of a format. */
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

/** As `formatted`, which is the one to use. */
std::string formattedText(std::string_view format, std::initializer_list<CFormatArgument> arguments);

/**
 * A text in the manner of `printf`, whatever the process's locale: some group digits. It knows the
 * conversions %s and %d, with a width and the flag 0, and as many of them as there are arguments.
 */
template<typename... Arguments>
std::string formatted(std::string_view format, const Arguments&... arguments)
{
    return formattedText(format, {CFormatArgument(arguments)...});
}

} // namespace NAMESPACE_Ostrel
