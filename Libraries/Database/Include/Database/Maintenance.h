#pragma once

#include <Database/Export.h>

#include <cstdint>
#include <filesystem>
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

/** Deletes the local host's rows of adapters and drives that are not among these. */
DATABASE_EXPORT void removeOtherObjects(const std::vector<std::int32_t>& adapterNumbers,
                                        const std::vector<std::string>& driveKeys);
