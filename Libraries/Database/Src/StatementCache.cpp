#include "StatementCache.h"

#include <algorithm>
#include <iterator>
#include <utility>

namespace Database {
namespace {

/**
 * What comes again: the look-up of a row, and its update, for a row holds little that changes often. A row
 * that is inserted has an identifier of its own. Some settings take effect while their text is understood.
 */
constexpr std::string_view KEPT[] = {"SELECT ", "UPDATE "};

} // namespace

sqlite3_stmt* CStatementCache::Find(std::string_view text)
{
    const auto found = m_ByText.find(text);
    if (found == m_ByText.end())
        return nullptr;
    m_Entries.splice(m_Entries.begin(), m_Entries, found->second);
    return found->second->m_Statement.get();
}

void CStatementCache::Keep(std::string_view text, CStatement statement)
{
    if (std::none_of(std::begin(KEPT), std::end(KEPT),
                     [text](std::string_view verb) { return text.starts_with(verb); }))
        return;
    if (m_Entries.size() == CAPACITY) {
        m_ByText.erase(m_Entries.back().m_Text);
        m_Entries.pop_back();
    }
    m_Entries.push_front({std::string(text), std::move(statement)});
    m_ByText[m_Entries.front().m_Text] = m_Entries.begin();
}

} // namespace Database
