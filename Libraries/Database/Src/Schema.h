#pragma once

#include <DatabaseORM/Storage.h>

#include <string>

namespace Database {

/** Counts up with every change to the tables' columns or rules; the file carries the one it was made with. */
inline constexpr int SCHEMA_VERSION = 2;

/** The present field maps and tables, without an access object. */
DatabaseORM::storage_t makeStorage();

/** The statement that creates `table`. Columns marked UNIQUE form one key together; a repeated one replaces
 * its row. */
std::string createTableText(const DatabaseORM::tableBase_t& table);

/** The statements that create what keeps rows in step with one another, and from being written for nothing.
 */
std::string createTriggersText(const DatabaseORM::storage_t& storage);
/** The statements that remove them, as far as they are there. */
std::string dropTriggersText(const DatabaseORM::storage_t& storage);

} // namespace Database
