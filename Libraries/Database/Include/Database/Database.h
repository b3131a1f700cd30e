#pragma once

#include <Database/Export.h>
#include <DatabaseORM/Storage.h>

#include <filesystem>
#include <memory>

/**
 * Says where the database is from now on; an empty path means one in memory, which is also the rule until
 * this is called. The host calls it before it loads plug-ins, and with an empty path after it has released
 * them, for the end of the process does not close the file. Whoever holds an earlier storage keeps it; the
 * next `getDatabasePointer` makes a fresh one. The file is created when it is missing, its folder is not.
 * Safe from any thread.
 */
DATABASE_EXPORT void setDatabaseFile(const std::filesystem::path& file);

/**
 * The storage that the process's plug-ins share, with the field maps and tables of `Plugin`, `Adapter` and
 * `PD`. Touches no file: that is opened by the first query, and what is wrong with it is that query's
 * failure. A query that could not open the file leaves the next one to try again. A file that was deleted or
 * replaced meanwhile is opened anew by the next query: rows are then those of the file that is there.
 * Safe from any thread.
 */
DATABASE_EXPORT std::shared_ptr<DatabaseORM::storage_t> getDatabasePointer();
