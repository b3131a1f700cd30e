#pragma once

#include <PI/Export.h>

#include <filesystem>
#include <optional>
#include <string>

namespace PI {

// Keeps the numbers of `CGlobalAdapterID` between two runs of a host, in a text file with one line for each
// location.

/**
 * Replaces all numbers given so far by those of `file`; a missing file holds none. Lines that cannot be read
 * are skipped, after a copy of the file was saved under another name. Returns a message about that; nothing
 * when the whole file can be read. Throws `std::runtime_error` when the file cannot be read, and the numbers
 * stay as they were; or when the copy fails, and the numbers of the good lines are used. After either,
 * `storeAdapterNumbers` does not write the file.
 */
PI_EXPORT std::optional<std::string> restoreAdapterNumbers(const std::filesystem::path& file);

/**
 * Writes all numbers to `file`, unless it holds exactly these or the file's own numbers could not be
 * restored. A reader of the file finds either all old numbers or all new ones. Throws `std::runtime_error`
 * when the file cannot be written.
 */
PI_EXPORT void storeAdapterNumbers(const std::filesystem::path& file);

} // namespace PI
