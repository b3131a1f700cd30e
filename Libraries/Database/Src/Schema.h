#pragma once

#include <DatabaseORM/Storage.h>

#include <string>

namespace Database {

/**
 * Goes up with every change to the columns or rules of the tables. A file keeps the version that it was made
 * with.
 */
inline constexpr int SCHEMA_VERSION = 2;

/** The present field maps and tables, without an access object. */
DatabaseORM::storage_t makeStorage();

/**
 * The statement that creates `table`. The columns marked UNIQUE together form one key; inserting a row with
 * the same key replaces the old row.
 */
std::string createTableText(const DatabaseORM::tableBase_t& table);

/**
 * The statements that create the triggers. Triggers keep rows consistent and prevent writes that change
 * nothing.
 */
std::string createTriggersText(const DatabaseORM::storage_t& storage);
/** The statements that remove the triggers that exist. */
std::string dropTriggersText(const DatabaseORM::storage_t& storage);

} // namespace Database
