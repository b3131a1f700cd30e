#pragma once

#include <PI/Export.h>

#include <filesystem>
#include <optional>
#include <string>

namespace PI {

// The numbers of `CGlobalAdapterID` between two runs of a host, in a text file of one line a location.

/**
 * Puts the numbers of `file` in the place of all that were given so far; a file that is not there holds none.
 * Lines that make no sense are passed over, after the file was set aside under another name as it is. Returns
 * what to tell of that; nothing when the whole file makes sense.
 * Throws `std::runtime_error` when it cannot be read, with the numbers as they were, or cannot be set aside,
 * with those of its good lines. `storeAdapterNumbers` then leaves it alone.
 */
PI_EXPORT std::optional<std::string> restoreAdapterNumbers(const std::filesystem::path& file);

/**
 * Writes all numbers to `file`, unless it holds just these, or its own are not among them because they could
 * not be restored. Whoever reads it finds the old ones or the new ones whole. Throws `std::runtime_error`
 * when it cannot be written.
 */
PI_EXPORT void storeAdapterNumbers(const std::filesystem::path& file);

} // namespace PI
