#include <DatabaseORM/Table.h>

#include <algorithm>
#include <utility>

namespace DatabaseORM {

tableBase_t::tableBase_t(std::string name, std::vector<column_t> columns, bool usesForeignKeys)
    : m_Name(std::move(name)), m_Columns(std::move(columns)), m_UsesForeignKeys(usesForeignKeys)
{}

tableBase_t::~tableBase_t() = default;

bool tableBase_t::HasGeneratedKey() const
{
    return std::any_of(m_Columns.begin(), m_Columns.end(),
                       [](const column_t& column) { return column.m_GeneratedKey; });
}

} // namespace DatabaseORM
