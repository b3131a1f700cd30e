#pragma once

#include "BusyPolicy.h"
#include "StatementCache.h"
#include "StatementShape.h"

#include <sqlite3.h>

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

namespace Database {

/** An open SQLite database. Every failure is a `DBEXCEPTION::DatabaseException` that names the file. */
class CSqliteConnection
{
public:
    /**
     * Opens `file`, or a database in memory when it is empty. `busyPolicy` outlives the connection. A link is
     * followed when the superuser or this process's user owns it.
     */
    CSqliteConnection(const std::filesystem::path& file, CBusyPolicy& busyPolicy);

    /** Opens `file` to be read, and makes no other file beside it. */
    static CSqliteConnection ToRead(const std::filesystem::path& file, CBusyPolicy& busyPolicy);

    /**
     * Runs every statement of `sql`; returns all values, row by row, as texts. After a failure no transaction
     * is open.
     */
    std::vector<std::string> Run(std::string_view sql);

    /** Runs `sql` within the open transaction, which goes on: the whole of it, or nothing when it fails. */
    bool Attempt(const std::string& sql);

    /** How many rows it has changed since it was opened. */
    std::int64_t Changes() const { return sqlite3_total_changes(m_Connection.get()); }

    /**
     * Whether its path leads to another file by now, or to none. Costs a look at the path alone. Never so on
     * Windows, where nobody can delete or replace a file that SQLite has open.
     */
    bool HasMoved() const;

    /** Throws the failure that `reason` is. */
    [[noreturn]] void Fail(const std::string& reason) const;

private:
    struct CClose
    {
        void operator()(sqlite3* connection) const { sqlite3_close(connection); }
    };

    CSqliteConnection(std::filesystem::path file, const std::string& target, int flags,
                      CBusyPolicy& busyPolicy);
    void RunAll(std::string_view sql, std::vector<std::string>& values);
    CStatement Prepare(std::string_view sql, const char** tail);
    /** The kept statement of a shape; null when SQLite does not understand it. */
    sqlite3_stmt* PrepareShape(const std::string& text);
    void Bind(sqlite3_stmt* statement, const std::vector<CStatementShape::Value>& values);
    /** Runs a statement to its end and appends the values of its rows. */
    void Step(sqlite3_stmt* statement, std::vector<std::string>& values);
    [[noreturn]] void Fail() const;

    std::filesystem::path m_File; ///< for messages
    CBusyPolicy* m_BusyPolicy;    ///< never null
    std::unique_ptr<sqlite3, CClose> m_Connection;
    CStatementCache m_Kept; // behind the connection, for it goes first
};

} // namespace Database
