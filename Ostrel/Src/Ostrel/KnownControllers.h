#pragma once

#include <string>
#include <vector>

namespace NAMESPACE_Ostrel {

/** Controllers for the lookup of PCI locations: vendor and device, four hexadecimal digits each. */
extern const std::vector<std::string> g_KnownControllers;

} // namespace NAMESPACE_Ostrel
