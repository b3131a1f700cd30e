#pragma once

#include <string>

#include <fcntl.h>

namespace TLXX::Linux {

/**
 * The first line of a sysfs attribute as safe text, at most 255 bytes; empty if it cannot be read. `path`
 * counts from the open folder `above`; by default from where the process is.
 */
std::string readAttribute(const char* path, int above = AT_FDCWD);

} // namespace TLXX::Linux
