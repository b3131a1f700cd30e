#pragma once

#include "Base/Failure.h"
#include "Base/Sqlite.h"

#include <filesystem>
#include <string>

// The tables of the service's file.
namespace Host::Journal {

/** Whether the file has the tables. A file that was only just made has none. */
bool hasTables(Sqlite::Connection& connection);

/** Throws `Failure` when `file` is of a newer release, or of another program. */
void refuseForeign(Sqlite::Connection& connection, const std::filesystem::path& file);

/** Makes the tables, or brings those of an older release to the present schema. Throws `Sqlite::Error`. */
void migrate(Sqlite::Connection& connection);

/** What the user is told when `file` cannot be used. `what` is "opened", "read" or "written". */
Failure failureOf(const std::filesystem::path& file, const char* what, const Sqlite::Error& error);

} // namespace Host::Journal
