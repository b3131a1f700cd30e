#pragma once

#include <sqlite3.h>

#include <filesystem>
#include <string>

namespace Database {

/** What SQLite says of the last failure of `connection`, which is one to `file`, and why it failed as far as
 * that is known. */
std::string failureReason(sqlite3* connection, const std::filesystem::path& file);

} // namespace Database
