#pragma once

#include <cstdint>

namespace NAMESPACE_Ostrel {

/** The bounds of the poll interval, in seconds. */
inline constexpr std::uint32_t MINIMUM_POLL_INTERVAL = 2;
inline constexpr std::uint32_t MAXIMUM_POLL_INTERVAL = 255;

} // namespace NAMESPACE_Ostrel
