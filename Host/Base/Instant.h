#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace Host {

/**
 * The instant that a user means, in milliseconds since 1970: an ISO 8601 time ("2026-01-31T12:00:00Z", also
 * with an offset such as "+01:00", or without one for this machine's time zone), a date, or a time before
 * `now` as a number with s, m, h, d or w ("90m", "7d"). Nothing for any other text.
 */
std::optional<std::uint64_t> parseInstant(std::string_view text, std::uint64_t now);

} // namespace Host
