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
 * Statements kept prepared, by their text, for understanding a text costs far more than running it. The one
 * that was not used for the longest time goes first. A statement must be finalized before its connection is
 * closed.
 */
class CStatementCache
{
public:
    /** Two texts for each of a hundred drives; some kilobytes each. */
    static constexpr std::size_t CAPACITY = 200;

    /** The statement of this text; null when there is none. It is reset, and must be again after use. */
    sqlite3_stmt* Find(std::string_view text);

    /** Takes over a statement that is reset, unless each run has to understand the text anew. */
    void Keep(std::string_view text, CStatement statement);

private:
    struct CEntry
    {
        std::string m_Text;
        CStatement m_Statement;
    };

    std::list<CEntry> m_Entries; ///< the last used one first
    std::unordered_map<std::string_view, std::list<CEntry>::iterator> m_ByText;
};

} // namespace Database
