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
 * Statements kept prepared, by their text, for understanding a look-up costs several times what running it
 * does. The one that was not used for the longest time goes first: more drives than there is room for, which
 * come in the same order every time, would find none of theirs kept. A statement must be finalized before its
 * connection is closed.
 */
class CStatementCache
{
public:
    /** Look-up and update of adapter and drive, for 250 drives; 5 to 11 kilobytes each. */
    static constexpr std::size_t CAPACITY = 1024;

    /** The statement of this text; null when there is none. It is reset, and must be again after use. */
    sqlite3_stmt* Find(std::string_view text);

    /** Takes over a statement that is reset, if it is one that comes again. */
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
