#pragma once

#include <TLX/Export.h>

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>

namespace TLX::Misc {

constexpr std::size_t LARGEST_FILE = 64U << 20U;

/**
 * The bytes of `file`; none when it is no regular file, cannot be read to its end, or has more than `largest`
 * bytes. Never waits for another process, as reading from a named pipe would.
 */
TLX_EXPORT std::optional<std::string> readRegularFile(const std::filesystem::path& file,
                                                      std::size_t largest = LARGEST_FILE);

/** Whether `file` exists and is neither a regular file nor a link to one. */
TLX_EXPORT bool isSpecialFile(const std::filesystem::path& file);

} // namespace TLX::Misc
