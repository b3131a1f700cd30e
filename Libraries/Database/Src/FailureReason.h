#pragma once

#include <sqlite3.h>

#include <filesystem>
#include <string>

namespace Database {

/**
 * SQLite's message for the last failure of `connection`, a connection to `file`, and the reason as far as it
 * is known.
 */
std::string failureReason(sqlite3* connection, const std::filesystem::path& file);

} // namespace Database
