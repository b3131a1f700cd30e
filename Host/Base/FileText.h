#pragma once

#include <TLX/RegularFile.h>

#include <filesystem>
#include <optional>
#include <string>

namespace Host {

/**
 * The bytes of a file. Returns nothing when it is no regular file, cannot be read completely or is larger
 * than 64 MiB.
 */
inline std::optional<std::string> readFile(const std::filesystem::path& file)
{
    return TLX::Misc::readRegularFile(file);
}

} // namespace Host
