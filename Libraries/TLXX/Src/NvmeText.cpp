#include <TLXX/NvmeText.h>

#include <algorithm>
#include <string_view>

namespace TLXX {

std::string boundedText(std::span<const std::uint8_t> field)
{
    constexpr std::string_view WHITE_SPACE = " \t\n\v\f\r";
    std::string text(field.begin(), std::find(field.begin(), field.end(), 0));
    text.erase(text.find_last_not_of(WHITE_SPACE) + 1);
    text.erase(0, text.find_first_not_of(WHITE_SPACE));
    std::replace_if(
        text.begin(), text.end(), [](char c) { return c < ' ' || c > '~'; }, '?');
    return text;
}

} // namespace TLXX
