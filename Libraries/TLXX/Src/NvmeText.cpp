#include <TLXX/NvmeText.h>

#include <algorithm>
#include <string_view>

namespace TLXX {
namespace {

bool isWhiteSpace(char character)
{
    return character == ' ' || (character >= '\t' && character <= '\r');
}

} // namespace

std::string boundedText(std::span<const std::uint8_t> field)
{
    std::string_view filled(reinterpret_cast<const char*>(field.data()), field.size());
    filled = filled.substr(0, filled.find('\0'));
    while (!filled.empty() && isWhiteSpace(filled.back()))
        filled.remove_suffix(1);
    while (!filled.empty() && isWhiteSpace(filled.front()))
        filled.remove_prefix(1);
    std::string text(filled);
    std::replace_if(
        text.begin(), text.end(), [](char c) { return c < ' ' || c > '~'; }, '?');
    return text;
}

} // namespace TLXX
