#pragma once

#include <string>

#include <fcntl.h>

namespace TLXX::Linux {

/**
 * The first line of a sysfs attribute as safe text, at most 255 bytes; empty if it cannot be read. `path` is
 * relative to the open folder `above`, by default to the current folder.
 */
std::string readAttribute(const char* path, int above = AT_FDCWD);

} // namespace TLXX::Linux
