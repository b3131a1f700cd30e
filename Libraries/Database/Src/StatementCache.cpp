#include "StatementCache.h"

#include <utility>

namespace Database {

sqlite3_stmt* CStatementCache::Find(std::string_view shape)
{
    const auto found = m_ByShape.find(shape);
    if (found == m_ByShape.end())
        return nullptr;
    m_Entries.splice(m_Entries.begin(), m_Entries, found->second);
    return found->second->m_Statement.get();
}

sqlite3_stmt* CStatementCache::Keep(std::string_view shape, CStatement statement)
{
    if (m_Entries.size() == CAPACITY) {
        m_ByShape.erase(m_Entries.back().m_Shape);
        m_Entries.pop_back();
    }
    m_Entries.push_front({std::string(shape), std::move(statement)});
    m_ByShape[m_Entries.front().m_Shape] = m_Entries.begin();
    return m_Entries.front().m_Statement.get();
}

} // namespace Database
