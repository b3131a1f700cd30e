#pragma once

#include <filesystem>
#include <optional>
#include <string>

namespace Host {

/** The bytes of a file; none when it cannot be read to its end or is larger than 64 MiB. */
std::optional<std::string> readFile(const std::filesystem::path& file);

} // namespace Host
