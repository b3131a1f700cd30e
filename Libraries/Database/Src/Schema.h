#pragma once

#include <DatabaseORM/Storage.h>

#include <string>

namespace Database {

/** Counts up with every change to the tables' columns or rules; the file carries the one it was made with. */
inline constexpr int SCHEMA_VERSION = 1;

/** The present field maps and tables, without an access object. */
DatabaseORM::storage_t makeStorage();

/** The statement that creates `table`. Columns marked UNIQUE form one key together; a repeated one replaces
 * its row. */
std::string createTableText(const DatabaseORM::tableBase_t& table);

/** Creates what keeps rows in step with one another. */
extern const char* const CREATE_TRIGGERS;
extern const char* const DROP_TRIGGERS;

} // namespace Database
