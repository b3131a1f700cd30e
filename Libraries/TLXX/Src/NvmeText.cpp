#include <TLXX/NvmeText.h>

#include <algorithm>
#include <string_view>

namespace TLXX {

std::string boundedText(std::span<const std::uint8_t> field)
{
    constexpr std::string_view WHITE_SPACE = " \t\n\v\f\r";
    std::string_view filled(reinterpret_cast<const char*>(field.data()), field.size());
    filled = filled.substr(0, filled.find('\0'));
    filled = filled.substr(0, filled.find_last_not_of(WHITE_SPACE) + 1);
    filled.remove_prefix(std::min(filled.find_first_not_of(WHITE_SPACE), filled.size()));
    std::string text(filled);
    std::replace_if(
        text.begin(), text.end(), [](char c) { return c < ' ' || c > '~'; }, '?');
    return text;
}

} // namespace TLXX
