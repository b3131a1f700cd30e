#pragma once

#include "Base/Platform.h"

#include <filesystem>
#include <vector>

namespace Host::Platform {

/** The NVMe functions below `root` (usually "/sys") that the driver "nvme" does not use. */
std::vector<UnservedFunction> unservedFunctionsBelow(const std::filesystem::path& root);

} // namespace Host::Platform
