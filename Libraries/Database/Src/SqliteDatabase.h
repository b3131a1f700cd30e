#pragma once

#include "BusyPolicy.h"
#include "SqliteConnection.h"

#include <DatabaseORM/DatabaseDAO.h>

#include <cstdint>
#include <filesystem>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace Database {

/**
 * The access object of a storage: SQLite on a file, opened and brought to the present schema by the first
 * query, and again when the file was deleted or replaced meanwhile.
 */
class CSqliteDatabase : public DatabaseWrapper::DatabaseDAO
{
public:
    /** An empty `file` means a database in memory. */
    explicit CSqliteDatabase(std::filesystem::path file);

    std::vector<std::string> query(const std::string& sql) override;

    /** How many rows all queries have changed since the file was opened. */
    std::int64_t Changes();

    /** Runs `sql` and returns true, or returns false when `Changes()` is not `changes` any more. */
    bool RunUnlessChanged(const std::string& sql, std::int64_t changes);

    /** The message of the last query that failed since this was called last. */
    std::optional<std::string> TakeFailure();

private:
    /** Does `work` with the open connection; keeps what it fails of. */
    template<class Work>
    auto WithConnection(Work work);
    /** What would be written to a file without a name is lost. */
    void LeaveMovedFile();

    const std::filesystem::path m_File;
    std::mutex m_Lock; ///< guards all that follows: a storage is shared by plug-ins with threads of their own
    CBusyPolicy m_BusyPolicy;
    std::optional<CSqliteConnection> m_Connection;
    std::optional<std::string> m_Failure;
};

} // namespace Database
