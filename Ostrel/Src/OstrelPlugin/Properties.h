#pragma once

#include <PI/Property.h>

#include <cstdint>
#include <vector>

namespace NAMESPACE_Ostrel {

/**
 * Fills `properties` with the property `propertyId` of the plug-in's own object, or with all of them; old
 * content goes. `pollInterval` is in seconds. Returns 0.
 */
std::uint32_t getPluginProperties(std::uint32_t pollInterval, std::vector<PI::CProperty>& properties,
                                  std::uint32_t propertyId);

} // namespace NAMESPACE_Ostrel
