#pragma once

#include <cstdint>

namespace PI {

/** The key of the poll interval in a plug-in's settings file. */
inline constexpr char POLL_INTERVAL_KEY[] = "PollInterval";

// The interval, in seconds.
inline constexpr std::uint32_t DEFAULT_POLL_INTERVAL = 30;
inline constexpr std::uint32_t MINIMUM_POLL_INTERVAL = 2;
inline constexpr std::uint32_t MAXIMUM_POLL_INTERVAL = 255;

} // namespace PI
