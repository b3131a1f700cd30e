#pragma once

#include <PI/ConfigFile.h>
#include <PI/PollInterval.h>
#include <PI/Property.h>

#include <cstdint>
#include <optional>

namespace NAMESPACE_Ostrel {

/** The interval that the settings hold, within its bounds; the default where they hold no whole number. */
std::uint32_t readPollInterval(PI::CConfigFile& settings);

/** Keeps the interval in the settings. Returns what writing them returned; 0 is success. */
std::uint32_t writePollInterval(PI::CConfigFile& settings, std::uint32_t interval);

/** Shows the interval, with its bounds, as the value of `property`. */
void showPollInterval(std::uint32_t interval, PI::CProperty& property);

/**
 * The interval that `property` asks for, within the bounds that the property itself carries, in whatever
 * order they are. Nothing when its value is of another type.
 */
std::optional<std::uint32_t> requestedPollInterval(const PI::CProperty& property);

} // namespace NAMESPACE_Ostrel
