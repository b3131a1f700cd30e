#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace Host {

/**
 * The instant that a user means, in milliseconds since 1970. Nothing unless the text is one of these:
 * - an ISO 8601 time ("2026-01-31T12:00:00Z"), also with an offset such as "+01:00"; without one it is in
 *   this machine's time zone;
 * - a date, which means the beginning of that day in this machine's time zone;
 * - a time before `now`, as a number with s, m, h, d or w ("90m", "7d").
 */
std::optional<std::uint64_t> parseInstant(std::string_view text, std::uint64_t now);

} // namespace Host
