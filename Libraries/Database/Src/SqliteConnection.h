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
     * Opens `file`, or a database in memory when it is empty. `busyPolicy` must outlive the connection. A
     * link is followed only when the superuser or this process's user owns it.
     */
    CSqliteConnection(const std::filesystem::path& file, CBusyPolicy& busyPolicy);

    /** Opens `file` for reading and creates no other file beside it. */
    static CSqliteConnection ToRead(const std::filesystem::path& file, CBusyPolicy& busyPolicy);

    /**
     * Runs every statement of `sql` and returns all values, row by row, as texts. After a failure no
     * transaction is open.
     */
    std::vector<std::string> Run(std::string_view sql);

    /**
     * Runs `sql` within the open transaction, which stays open. When a statement fails, none of `sql` takes
     * effect.
     */
    bool Attempt(const std::string& sql);

    /** How many rows this connection has changed since it was opened. */
    std::int64_t Changes() const { return sqlite3_total_changes(m_Connection.get()); }

    /**
     * Whether its path now leads to another file, or to none. Only looks at the path. Always false on
     * Windows, where a file that SQLite has open cannot be deleted or replaced.
     */
    bool HasMoved() const;

    /** Throws the failure with this `reason`. */
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
    /** The cached statement of a shape; null when SQLite cannot parse it. */
    sqlite3_stmt* PrepareShape(const std::string& text);
    void Bind(sqlite3_stmt* statement, const std::vector<CStatementShape::Value>& values);
    /** Runs a statement to its end and appends the values of its rows. */
    void Step(sqlite3_stmt* statement, std::vector<std::string>& values);
    [[noreturn]] void Fail() const;

    std::filesystem::path m_File; ///< for messages
    CBusyPolicy* m_BusyPolicy;    ///< never null
    std::unique_ptr<sqlite3, CClose> m_Connection;
    CStatementCache m_Kept; // after the connection, so that it is destroyed first
};

} // namespace Database
