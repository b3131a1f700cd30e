#pragma once

#include <cstddef>
#include <string>
#include <string_view>

// Text helpers that depend on no locale.
namespace Host {

bool equalIgnoringCase(std::string_view a, std::string_view b);
bool startsWithIgnoringCase(std::string_view text, std::string_view prefix);

/** `text` (UTF-8) with every control character, line ends included, replaced by '?': what a terminal may
 * see. */
std::string printable(std::string_view text);

/** The same, but line ends stay. */
std::string printableLines(std::string_view text);

/** Columns that `text` (UTF-8 without control or wide characters) takes. */
std::size_t displayWidth(std::string_view text);

/** `text` in `width` columns at most; what is missing in its middle is marked by an ellipsis. */
std::string shortened(const std::string& text, std::size_t width);

/** `number` with `decimals` digits behind the point. */
std::string decimalText(double number, int decimals);

} // namespace Host
