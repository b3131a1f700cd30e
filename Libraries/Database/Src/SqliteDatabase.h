#pragma once

#include "BusyPolicy.h"
#include "SqliteConnection.h"

#include <DatabaseORM/DatabaseDAO.h>

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

private:
    /** What would be written to a file without a name is lost. */
    void LeaveMovedFile();

    const std::filesystem::path m_File;
    std::mutex m_Lock; ///< guards all that follows: a storage is shared by plug-ins with threads of their own
    CBusyPolicy m_BusyPolicy;
    std::optional<CSqliteConnection> m_Connection;
};

} // namespace Database
