#pragma once

#include <PI/Export.h>

#include <filesystem>

namespace PI {

// The numbers of `CGlobalAdapterID` between two runs of a host, in a text file of one line a location.

/**
 * Puts the numbers of `file` in the place of all that were given so far; a file that is not there holds none.
 * Throws `std::runtime_error`, with the numbers as they were, for one that cannot be read or makes no sense.
 */
PI_EXPORT void restoreAdapterNumbers(const std::filesystem::path& file);

/**
 * Writes all numbers to `file`, unless it holds just these. Whoever reads it finds the old ones or the new
 * ones whole. Throws `std::runtime_error` when it cannot be written.
 */
PI_EXPORT void storeAdapterNumbers(const std::filesystem::path& file);

} // namespace PI
