#pragma once

#include <Database/Export.h>

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

// What a host does with the shared database besides handing it to its plug-ins. All functions throw
// `DBEXCEPTION::DatabaseException`.

/**
 * Checks that the database can be opened and written and that its content is sound. There is nothing to check
 * after `keepNoRows`.
 */
DATABASE_EXPORT void checkDatabase();

/** Whose tables a database file holds. */
enum class EDatabaseTables
{
    None,    ///< no tables: the file is empty
    Present, ///< those of this release
    Foreign, ///< those of a former release or of another program; opening it to write rebuilds them
    Newer,   ///< those of a newer release, which every query refuses
};

/**
 * Checks from outside whether `file` is a sound database. Makes and changes nothing in its folder, and does
 * not disturb a process that writes to the file.
 */
DATABASE_EXPORT EDatabaseTables inspectDatabase(const std::filesystem::path& file);

/** Counts the rows that this process has changed so far, for `removeOtherObjects`. */
DATABASE_EXPORT std::int64_t countDatabaseChanges();

/**
 * Deletes the local host's rows of adapters and drives that are not in these lists, and returns true. A host
 * reads `countDatabaseChanges` before it lists its objects and passes the result as `changes`. When the
 * process has changed rows since, the changed rows may belong to newer objects: then it deletes nothing and
 * returns false.
 */
DATABASE_EXPORT bool removeOtherObjects(const std::vector<std::int32_t>& adapterNumbers,
                                        const std::vector<std::string>& driveKeys, std::int64_t changes);

/**
 * The message of the process's last failed query since the previous call; nothing when no query has failed.
 * Plug-ins cannot report failures of the database, so a host asks for them now and then. Throws no exception
 * of the database.
 */
DATABASE_EXPORT std::optional<std::string> takeDatabaseFailure();
