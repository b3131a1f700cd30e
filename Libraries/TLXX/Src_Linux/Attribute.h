#pragma once

#include <filesystem>
#include <string>

namespace TLXX::Linux {

/** The first line of a sysfs attribute as safe text, at most 255 bytes; empty if it cannot be read. */
std::string readAttribute(const std::filesystem::path& file);

} // namespace TLXX::Linux
