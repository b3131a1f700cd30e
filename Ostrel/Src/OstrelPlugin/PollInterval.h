#pragma once

#include <PI/ConfigFile.h>
#include <PI/PollInterval.h>
#include <PI/Property.h>

#include <cstdint>
#include <optional>

namespace NAMESPACE_Ostrel {

/** The interval in the settings, limited by its bounds; the default when they have no whole number. */
std::uint32_t readPollInterval(PI::CConfigFile& settings);

/** Stores the interval in the settings. Returns the result of the write; 0 is success. */
std::uint32_t writePollInterval(PI::CConfigFile& settings, std::uint32_t interval);

/** Sets the interval, with its bounds, as the value of `property`. */
void showPollInterval(std::uint32_t interval, PI::CProperty& property);

/**
 * The interval in the value of `property`, limited by the bounds that the property itself carries. The
 * minimum may be above the maximum. Nothing when the value is of another type.
 */
std::optional<std::uint32_t> requestedPollInterval(const PI::CProperty& property);

} // namespace NAMESPACE_Ostrel
