#pragma once

#include <string>

namespace NAMESPACE_Ostrel {

// What the plug-in's own object and its row say of it.
inline constexpr char PLUGIN_NAME[] = "NVMe-Plugin";
inline constexpr char PLUGIN_VENDOR[] = "Ostrel";
inline constexpr char SETTABLE_PROPERTIES[] =
    R"({"settableProperties":[{"name":"pollinterval","formatStr":"<int32>[2..255, 1]"}]})";

/** The plug-in's place among the objects of its host. */
std::string pluginLocation();

} // namespace NAMESPACE_Ostrel
