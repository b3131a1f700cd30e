#pragma once

#include "BusyPolicy.h"
#include "SharedDatabase.h"
#include "SqliteConnection.h"

#include <cstdint>
#include <filesystem>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace Database {

/**
 * The access object of a storage: SQLite on a file. The first query opens the file and brings it to the
 * present schema. A query does so again when the file was deleted or replaced.
 */
class CSqliteDatabase : public ISharedDatabase
{
public:
    /** An empty `file` means a database in memory. */
    explicit CSqliteDatabase(std::filesystem::path file);

    std::vector<std::string> query(const std::string& sql) override;
    bool KeepsRows() const override { return true; }
    std::int64_t Changes() override;
    bool RunUnlessChanged(const std::string& sql, std::int64_t changes) override;
    std::optional<std::string> TakeFailure() override;

private:
    /** Does `work` with the open connection and keeps the message of its failure. */
    template<class Work>
    auto WithConnection(Work work);
    /** Data in a file that has lost its name would be lost. */
    void LeaveMovedFile();

    const std::filesystem::path m_File;
    std::mutex m_Lock; ///< guards all that follows, because the threads of plug-ins share a storage
    CBusyPolicy m_BusyPolicy;
    std::optional<CSqliteConnection> m_Connection;
    std::optional<std::string> m_Failure;
};

} // namespace Database
