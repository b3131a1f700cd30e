#include "SqliteDatabase.h"

#include "Identifiers.h"
#include "Migration.h"

#include <DatabaseORM/DatabaseException.h>

#include <exception>
#include <utility>

namespace Database {

namespace {

// Replaced rows must count as deleted ones, because the schema's trigger relies on it. A commit need not
// reach the disk before the next one starts; the file is sound at any moment.
constexpr const char* SETTINGS = "PRAGMA recursive_triggers = ON;"
                                 "PRAGMA journal_mode = WAL;"
                                 "PRAGMA synchronous = NORMAL;";

CSqliteConnection open(const std::filesystem::path& file, CBusyPolicy& busyPolicy)
{
    CSqliteConnection connection(file, busyPolicy);
    refuseNewer(connection);
    connection.Run(SETTINGS);
    migrate(connection);
    renumber(connection);
    return connection;
}

} // namespace

CSqliteDatabase::CSqliteDatabase(std::filesystem::path file) : m_File(std::move(file)) {}

template<class Work>
auto CSqliteDatabase::WithConnection(Work work)
{
    const std::lock_guard guard(m_Lock);
    try {
        if (m_Connection && m_Connection->HasMoved())
            LeaveMovedFile();
        if (!m_Connection)
            m_Connection.emplace(open(m_File, m_BusyPolicy));
        return work(*m_Connection);
    } catch (const std::exception& exception) {
        m_Failure = exception.what();
        throw;
    }
}

std::vector<std::string> CSqliteDatabase::query(const std::string& sql)
{
    return WithConnection([&sql](CSqliteConnection& connection) { return connection.Run(sql); });
}

std::int64_t CSqliteDatabase::Changes()
{
    return WithConnection([](const CSqliteConnection& connection) { return connection.Changes(); });
}

bool CSqliteDatabase::RunUnlessChanged(const std::string& sql, std::int64_t changes)
{
    return WithConnection([&sql, changes](CSqliteConnection& connection) {
        if (connection.Changes() != changes)
            return false;
        connection.Run(sql);
        return true;
    });
}

std::optional<std::string> CSqliteDatabase::TakeFailure()
{
    const std::lock_guard guard(m_Lock);
    return std::exchange(m_Failure, std::nullopt);
}

void CSqliteDatabase::LeaveMovedFile()
{
    try {
        // SQLite would replay a left-over log into the new file.
        m_Connection->Run("PRAGMA wal_checkpoint(TRUNCATE)");
    } catch (const DBEXCEPTION::DatabaseException&) {
        // The file at the path is still the open one.
    }
    m_Connection.reset(); // closing then leaves the log of another file alone
}

} // namespace Database
