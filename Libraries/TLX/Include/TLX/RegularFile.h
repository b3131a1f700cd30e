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
 * bytes. Never waits for another process, as the reader of a named pipe would.
 */
TLX_EXPORT std::optional<std::string> readRegularFile(const std::filesystem::path& file,
                                                      std::size_t largest = LARGEST_FILE);

/** Whether something is at `file` that is no regular file, and no link to one either. */
TLX_EXPORT bool isSpecialFile(const std::filesystem::path& file);

} // namespace TLX::Misc
