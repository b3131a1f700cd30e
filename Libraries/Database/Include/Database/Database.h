#pragma once

#include <Database/Export.h>
#include <DatabaseORM/Storage.h>

#include <filesystem>
#include <memory>

/**
 * Sets the file of the database. An empty path means a database in memory, which is also the initial state.
 * The host calls this before it loads plug-ins, and with an empty path after it has released them, because
 * the end of the process does not close the file. A storage that was handed out earlier stays usable; the
 * next `getDatabasePointer` makes a fresh one. The file is created when it is missing, its folder is not.
 * Safe from any thread.
 */
DATABASE_EXPORT void setDatabaseFile(const std::filesystem::path& file);

/**
 * Makes the storage keep nothing, until the next `setDatabaseFile`. Every statement then succeeds without
 * SQLite and costs next to nothing. The tables are always empty: a select finds no row, a maximum is NULL.
 * Nothing reads the statements, so wrong ones succeed, too. For hosts that need no rows. Called when
 * `setDatabaseFile` may be called; safe from any thread.
 */
DATABASE_EXPORT void keepNoRows();

/**
 * The storage that the process's plug-ins share, with the field maps and tables of `Plugin`, `Adapter` and
 * `PD`. Touches no file: the first query opens it, and fails when that is not possible. The next query then
 * tries again. When the file was deleted or replaced meanwhile, the next query opens the file that is there
 * now and works on its rows. Safe from any thread.
 */
DATABASE_EXPORT std::shared_ptr<DatabaseORM::storage_t> getDatabasePointer();
