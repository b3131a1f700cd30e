#include "SqliteConnection.h"

#include <DatabaseORM/DatabaseException.h>

#include <cstddef>
#include <new>

namespace Database {

namespace {

struct CFinalize
{
    void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};

using CStatement = std::unique_ptr<sqlite3_stmt, CFinalize>;

std::string utf8(const std::filesystem::path& path)
{
    const std::u8string text = path.u8string();
    return {text.begin(), text.end()};
}

int onBusy(void* policy, int)
{
    return static_cast<CBusyPolicy*>(policy)->Wait() ? 1 : 0;
}

std::string columnText(sqlite3_stmt* statement, int column)
{
    if (sqlite3_column_type(statement, column) == SQLITE_NULL)
        return "NULL";
    const void* const text = sqlite3_column_text(statement, column);
    if (text == nullptr)
        throw std::bad_alloc();
    return {static_cast<const char*>(text),
            static_cast<std::size_t>(sqlite3_column_bytes(statement, column))};
}

} // namespace

CSqliteConnection::CSqliteConnection(const std::filesystem::path& file, CBusyPolicy& busyPolicy)
    : m_Name(file.empty() ? "database in memory" : "database '" + utf8(file) + "'")
{
    const std::string name = file.empty() ? ":memory:" : utf8(file);
    sqlite3* connection = nullptr;
    const int result = sqlite3_open_v2(
        name.c_str(), &connection, SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE | SQLITE_OPEN_NOMUTEX, nullptr);
    m_Connection.reset(connection);
    if (result != SQLITE_OK)
        Fail();
    sqlite3_busy_handler(connection, onBusy, &busyPolicy);
}

std::vector<std::string> CSqliteConnection::Run(std::string_view sql)
{
    // SQLite would take the text to end there, and run half of it.
    if (sql.find('\0') != std::string_view::npos)
        Fail("the statement holds a zero byte");
    std::vector<std::string> values;
    try {
        RunAll(sql, values);
    } catch (...) {
        if (sqlite3_get_autocommit(m_Connection.get()) == 0)
            sqlite3_exec(m_Connection.get(), "ROLLBACK", nullptr, nullptr, nullptr);
        throw;
    }
    return values;
}

void CSqliteConnection::RunAll(std::string_view sql, std::vector<std::string>& values)
{
    while (!sql.empty()) {
        sqlite3_stmt* prepared = nullptr;
        const char* tail = nullptr;
        if (sqlite3_prepare_v2(m_Connection.get(), sql.data(), static_cast<int>(sql.size()), &prepared,
                               &tail) != SQLITE_OK)
            Fail();
        const CStatement statement(prepared);
        sql.remove_prefix(static_cast<std::size_t>(tail - sql.data()));
        if (!statement)
            continue;
        int result = SQLITE_ROW;
        while ((result = sqlite3_step(prepared)) == SQLITE_ROW)
            for (int column = 0; column < sqlite3_column_count(prepared); ++column)
                values.push_back(columnText(prepared, column));
        if (result != SQLITE_DONE)
            Fail();
    }
}

void CSqliteConnection::Fail() const
{
    // Without a connection there was no memory for one.
    if (!m_Connection)
        throw std::bad_alloc();
    Fail(sqlite3_errmsg(m_Connection.get()));
}

void CSqliteConnection::Fail(const std::string& reason) const
{
    throw DBEXCEPTION::DatabaseException(m_Name + ": " + reason);
}

} // namespace Database
