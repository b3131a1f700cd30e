#include "Base/Text.h"

#include <TLX/Utf8.h>

#include <algorithm>
#include <charconv>
#include <limits>
#include <vector>

namespace Host {
namespace {

char lower(char character)
{
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a') : character;
}

bool isContinuation(char byte)
{
    return (static_cast<unsigned char>(byte) & 0xC0U) == 0x80U;
}

constexpr std::string_view ELLIPSIS = "\u2026";

} // namespace

bool equalIgnoringCase(std::string_view a, std::string_view b)
{
    return a.size() == b.size() && startsWithIgnoringCase(a, b);
}

bool startsWithIgnoringCase(std::string_view text, std::string_view prefix)
{
    return text.size() >= prefix.size() && std::equal(prefix.begin(), prefix.end(), text.begin(),
                                                      [](char a, char b) { return lower(a) == lower(b); });
}

std::string printable(std::string_view text)
{
    std::string result;
    while (!text.empty()) {
        const TLX::Misc::CUtf8Character character = TLX::Misc::firstCharacter(text);
        if (character.m_Valid && !character.IsControl())
            result += text.substr(0, character.m_Length);
        else
            result += '?';
        text.remove_prefix(character.m_Length);
    }
    return result;
}

std::string printableLines(std::string_view text)
{
    std::string result;
    for (std::size_t end = text.find('\n'); end != std::string_view::npos; end = text.find('\n')) {
        result += printable(text.substr(0, end)) + '\n';
        text.remove_prefix(end + 1);
    }
    return result + printable(text);
}

std::size_t displayWidth(std::string_view text)
{
    return static_cast<std::size_t>(
        std::count_if(text.begin(), text.end(), [](char byte) { return !isContinuation(byte); }));
}

std::string shortened(const std::string& text, std::size_t width)
{
    if (displayWidth(text) <= width || width == 0)
        return width == 0 ? std::string() : text;
    std::vector<std::size_t> starts;
    for (std::size_t i = 0; i < text.size(); ++i)
        if (!isContinuation(text[i]))
            starts.push_back(i);
    const std::size_t head = width / 2;
    const std::size_t tail = width - 1 - head;
    return text.substr(0, starts[head]) + std::string(ELLIPSIS) +
           (tail > 0 ? text.substr(starts[starts.size() - tail]) : std::string());
}

std::string inSmallLetters(std::string_view text)
{
    std::string result(text);
    std::transform(result.begin(), result.end(), result.begin(), lower);
    return result;
}

std::optional<std::uint64_t> parseNumber(std::string_view text, int base)
{
    std::uint64_t number = 0;
    const char* const end = text.data() + text.size();
    const auto [next, error] = std::from_chars(text.data(), end, number, base);
    return error == std::errc() && next == end ? std::optional(number) : std::nullopt;
}

std::optional<std::uint64_t> parseHexadecimal(std::string_view text)
{
    return startsWithIgnoringCase(text, "0x") ? parseNumber(text.substr(2), 16) : std::nullopt;
}

std::optional<std::uint32_t> in32Bits(std::optional<std::uint64_t> number)
{
    return number && *number <= std::numeric_limits<std::uint32_t>::max()
               ? std::optional(static_cast<std::uint32_t>(*number))
               : std::nullopt;
}

std::string decimalText(double number, int decimals)
{
    // Large enough for the largest number in fixed notation.
    char buffer[400];
    const auto result =
        std::to_chars(buffer, buffer + sizeof buffer, number, std::chars_format::fixed, decimals);
    return {buffer, result.ptr};
}

std::filesystem::path pathFromUtf8(std::string_view text)
{
    return std::u8string(text.begin(), text.end());
}

} // namespace Host
