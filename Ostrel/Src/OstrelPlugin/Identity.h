#pragma once

#include <string>

namespace NAMESPACE_Ostrel {

// The names and numbers in the plug-in's own object and row.
inline constexpr char PLUGIN_NAME[] = "NVMe-Plugin";
inline constexpr char PLUGIN_VENDOR[] = "Ostrel";
inline constexpr char SETTABLE_PROPERTIES[] =
    R"({"settableProperties":[{"name":"pollinterval","formatStr":"<int32>[2..255, 1]"}]})";

/** The plug-in's place among the objects of its host. */
std::string pluginLocation();

} // namespace NAMESPACE_Ostrel
