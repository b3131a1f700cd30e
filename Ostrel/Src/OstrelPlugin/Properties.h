#pragma once

#include <cstdint>

namespace NAMESPACE_Ostrel {

/** The bounds of the poll interval, in seconds. */
inline constexpr std::uint32_t MINIMUM_POLL_INTERVAL = 2;
inline constexpr std::uint32_t MAXIMUM_POLL_INTERVAL = 255;

/** The poll interval's key in the settings file. */
inline constexpr char POLL_INTERVAL_KEY[] = "PollInterval";

} // namespace NAMESPACE_Ostrel
