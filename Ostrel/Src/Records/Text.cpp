#include "Records/Text.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <locale>

namespace NAMESPACE_Ostrel {
namespace {

/**
 * Removes the flag, width and letter of a conversion from the start of `format`; appends `text` accordingly.
 */
void convert(std::string_view& format, std::string_view text, std::string& result)
{
    const bool zeros = format.starts_with('0');
    std::size_t width = 0;
    const char* const end = format.data() + format.size();
    const char* const letter = std::from_chars(format.data(), end, width).ptr;
    format.remove_prefix(std::min<std::size_t>(letter - format.data() + 1, format.size()));
    const std::size_t padding = width > text.size() ? width - text.size() : 0;
    if (zeros && text.starts_with('-')) {
        result += '-';
        text.remove_prefix(1);
    }
    result.append(padding, zeros ? '0' : ' ').append(text);
}

} // namespace

bool equalIgnoringCase(std::string_view left, std::string_view right)
{
    const auto& letters = std::use_facet<std::ctype<char>>(std::locale::classic());
    return std::equal(left.begin(), left.end(), right.begin(), right.end(),
                      [&](char a, char b) { return letters.toupper(a) == letters.toupper(b); });
}

std::string formattedText(std::string_view format, std::initializer_list<CFormatArgument> arguments)
{
    std::string result;
    // Most arguments are about as long as their conversions.
    result.reserve(format.size());
    for (const CFormatArgument& argument : arguments) {
        const std::size_t conversion = std::min(format.find('%'), format.size());
        result += format.substr(0, conversion);
        format.remove_prefix(std::min(conversion + 1, format.size()));
        convert(format, argument.Text(), result);
    }
    return result.append(format);
}

} // namespace NAMESPACE_Ostrel
