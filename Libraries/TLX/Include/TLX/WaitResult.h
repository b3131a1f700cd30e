#pragma once

#include <cstdint>

namespace TLX::Threading {

/** The result of a wait or an initialisation. A waiter returns 1, 2, 3 ... for the handle that fired. */
namespace WaitResult {
inline constexpr std::uint32_t Taken = 1;      ///< the lock was taken, the event had fired, `Init` succeeded
inline constexpr std::uint32_t TimedOut = 130; ///< the time ran out first
inline constexpr std::uint32_t Failed = 131;   ///< not initialised, or the system refused
} // namespace WaitResult

/** A time-out that never ends, in milliseconds. */
inline constexpr std::uint32_t NO_TIME_LIMIT = 0xFFFFFFFFU;

} // namespace TLX::Threading
