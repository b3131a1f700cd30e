#pragma once

#include <TLX/UtcText.h>

#include <cstdint>
#include <string>

// Instants are milliseconds since 1970.
namespace Host {

inline constexpr std::uint64_t MILLISECONDS_A_SECOND = 1000;

using TLX::Misc::utcText;

/** An instant in this machine's time zone, as "2026-01-01 00:00:00". */
std::string localTimeText(std::uint64_t milliseconds);

/** The time of day in this machine's time zone, as "00:00:00". */
std::string timeOfDayText(std::uint64_t milliseconds);

} // namespace Host
