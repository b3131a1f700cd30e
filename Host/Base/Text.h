#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

// Text helpers that do not depend on a locale.
namespace Host {

bool equalIgnoringCase(std::string_view a, std::string_view b);
bool startsWithIgnoringCase(std::string_view text, std::string_view prefix);

/**
 * `text` (UTF-8), fit to be shown on a terminal. Control characters, line ends too, and invalid UTF-8 become
 * '?'.
 */
std::string printable(std::string_view text);

/** The same, but keeps line ends. */
std::string printableLines(std::string_view text);

/**
 * The number of columns that `text` needs. It must be UTF-8 without control characters and wide characters.
 */
std::size_t displayWidth(std::string_view text);

/** `text` in at most `width` columns. An ellipsis replaces the middle of a text that is too long. */
std::string shortened(const std::string& text, std::size_t width);

/** The text with its ASCII letters as small ones. */
std::string inSmallLetters(std::string_view text);

/**
 * The number that `text` writes in `base`. Nothing when other characters are in it, or when the number is too
 * large.
 */
std::optional<std::uint64_t> parseNumber(std::string_view text, int base);

/** The number that `text` writes as "0x" and hexadecimal digits. */
std::optional<std::uint64_t> parseHexadecimal(std::string_view text);

/** The same number in 32 bits. Nothing when there is none, or when it is too large. */
std::optional<std::uint32_t> in32Bits(std::optional<std::uint64_t> number);

/** `number` with `decimals` digits after the point. */
std::string decimalText(double number, int decimals);

/** The path that `text` (UTF-8) names. It is converted if the system's paths have another encoding. */
std::filesystem::path pathFromUtf8(std::string_view text);

} // namespace Host
