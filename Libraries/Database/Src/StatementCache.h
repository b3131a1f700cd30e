#pragma once

#include <sqlite3.h>

#include <cstddef>
#include <list>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>

namespace Database {

struct CFinalize
{
    void operator()(sqlite3_stmt* statement) const { sqlite3_finalize(statement); }
};

using CStatement = std::unique_ptr<sqlite3_stmt, CFinalize>;

/**
 * Keeps prepared statements by their shapes, because parsing a text costs far more than running it. The least
 * recently used one is dropped first. A statement must be finalized before its connection is closed.
 */
class CStatementCache
{
public:
    /**
     * A table takes about five statements, and more when different columns are unknown. Each takes some
     * kilobytes.
     */
    static constexpr std::size_t CAPACITY = 50;

    /**
     * The statement of this shape; null when there is none. It is reset; the caller must reset it after use.
     */
    sqlite3_stmt* Find(std::string_view shape);

    /** Takes over a statement and keeps it at least until the next one comes. */
    sqlite3_stmt* Keep(std::string_view shape, CStatement statement);

private:
    struct CEntry
    {
        std::string m_Shape;
        CStatement m_Statement;
    };

    std::list<CEntry> m_Entries; ///< most recently used first
    std::unordered_map<std::string_view, std::list<CEntry>::iterator> m_ByShape;
};

} // namespace Database
