#pragma once

#include <Database/Export.h>

#include <cstdint>
#include <string>
#include <vector>

// What a host does with the shared database besides handing it to its plug-ins. All throw
// `DBEXCEPTION::DatabaseException`.

/** Looks whether the database can be opened and written and whether what it holds is sound. */
DATABASE_EXPORT void checkDatabase();

/** Deletes the local host's rows of adapters and drives that are not among these. */
DATABASE_EXPORT void removeOtherObjects(const std::vector<std::int32_t>& adapterNumbers,
                                        const std::vector<std::string>& driveKeys);
