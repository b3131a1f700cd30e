#pragma once

#include <TLX/ModuleInfo.h>

#include <cstdint>

namespace NAMESPACE_Ostrel {

/** The plug-in's module number; also the upper 16 bits of every object identifier. */
inline constexpr std::uint32_t MODULE_ID = 313;

inline constexpr char MODULE_NAME[] = "Ostrel";

/** The plug-in's version as its own object and rows show it. */
extern const char PLUGIN_VERSION[];

/** The plug-in's module information, and the mask of its trace lines. Exists from load to unload. */
extern TLX::Misc::CModuleInfo g_ModuleInfo;

/** Prints to the process's standard output like `printf`. */
void consolePrint(const char* format, ...) __attribute__((format(printf, 1, 2)));

} // namespace NAMESPACE_Ostrel
