#include "Base/Text.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cstdlib>
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

/** A character's UTF-8 form: how its first byte looks, and the smallest number that needs that many bytes. */
struct Form
{
    unsigned m_Mask;
    unsigned m_Lead;
    std::uint32_t m_Smallest;
};

// By the number of bytes.
constexpr std::array FORMS = {Form{0x80, 0x00, 0}, Form{0xE0, 0xC0, 0x80}, Form{0xF0, 0xE0, 0x800},
                              Form{0xF8, 0xF0, 0x10000}};

bool isCharacter(std::uint32_t code)
{
    const bool isControl = code < 0x20 || (code >= 0x7F && code < 0xA0);
    const bool isSurrogate = code >= 0xD800 && code < 0xE000;
    return !isControl && !isSurrogate && code <= 0x10FFFF;
}

/** The bytes that the character at the head of `text` takes; negative for one that must not be shown. */
int characterSize(std::string_view text)
{
    const auto first = static_cast<unsigned char>(text.front());
    for (std::size_t size = 1; size <= FORMS.size(); ++size) {
        const Form& form = FORMS[size - 1];
        if ((first & form.m_Mask) != form.m_Lead)
            continue;
        std::uint32_t code = first & ~form.m_Mask;
        for (std::size_t i = 1; i < size; ++i) {
            if (i == text.size() || !isContinuation(text[i]))
                return -1;
            code = code << 6U | (static_cast<unsigned char>(text[i]) & 0x3FU);
        }
        if (code < form.m_Smallest)
            return -1;
        return isCharacter(code) ? static_cast<int>(size) : -static_cast<int>(size);
    }
    return -1;
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
        const int size = characterSize(text);
        const auto bytes = static_cast<std::size_t>(std::abs(size));
        if (size > 0)
            result += text.substr(0, bytes);
        else
            result += '?';
        text.remove_prefix(bytes);
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

std::string decimalText(double number, int decimals)
{
    // Wide enough for the largest number in fixed notation.
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
