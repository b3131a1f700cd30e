#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <string_view>

// Text helpers that depend on no locale.
namespace Host {

bool equalIgnoringCase(std::string_view a, std::string_view b);
bool startsWithIgnoringCase(std::string_view text, std::string_view prefix);

/**
 * `text` (UTF-8) with every control character, line ends included, and whatever is no UTF-8 replaced
 * by '?': what a terminal may see.
 */
std::string printable(std::string_view text);

/** The same, but line ends stay. */
std::string printableLines(std::string_view text);

/** Columns that `text` (UTF-8 without control or wide characters) takes. */
std::size_t displayWidth(std::string_view text);

/** `text` in `width` columns at most; what is missing in its middle is marked by an ellipsis. */
std::string shortened(const std::string& text, std::size_t width);

/** The number whose digits in `base` are the whole of `text`; none when they are not, or it does not fit. */
std::optional<std::uint64_t> parseNumber(std::string_view text, int base);

/** The number that `text` gives as hexadecimal digits behind "0x". */
std::optional<std::uint64_t> parseHexadecimal(std::string_view text);

/** `number` with `decimals` digits behind the point. */
std::string decimalText(double number, int decimals);

/** The path that `text` (UTF-8) names. Where the system's own paths are of another encoding it is converted.
 */
std::filesystem::path pathFromUtf8(std::string_view text);

} // namespace Host
