#pragma once

#include <Database/Export.h>

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

// What a host does with the shared database besides handing it to its plug-ins. All throw
// `DBEXCEPTION::DatabaseException`.

/** Looks whether the database can be opened and written and whether what it holds is sound. */
DATABASE_EXPORT void checkDatabase();

/** Whose tables a database file holds. */
enum class EDatabaseTables
{
    None,    ///< nobody's: it is empty
    Present, ///< those of this release
    Foreign, ///< those of a former release, or somebody else's; who opens the file to write rebuilds them
    Newer,   ///< those of a newer release, which every query refuses
};

/**
 * Looks whether `file` is a sound database, from outside: nothing in its folder is made or changed, and
 * whoever writes to it meanwhile is not disturbed.
 */
DATABASE_EXPORT EDatabaseTables inspectDatabase(const std::filesystem::path& file);

/** Counts the rows that this process has changed so far, for `removeOtherObjects`. */
DATABASE_EXPORT std::int64_t countDatabaseChanges();

/**
 * Deletes the local host's rows of adapters and drives that are not among these, and returns true. A host
 * counts `changes` before it looks which objects there are. When the process has changed rows since, those
 * may belong to objects that came later: then nothing is deleted, and false returned.
 */
DATABASE_EXPORT bool removeOtherObjects(const std::vector<std::int32_t>& adapterNumbers,
                                        const std::vector<std::string>& driveKeys, std::int64_t changes);

/**
 * The message of the last query of this process that failed since this was asked last, whoever made it;
 * nothing when none has. Plug-ins have nobody to tell, so a host asks now and then. Throws nothing of the
 * database's.
 */
DATABASE_EXPORT std::optional<std::string> takeDatabaseFailure();
