#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace DatabaseORM {

/** A constraint of a column: one of the keywords of `Keywords.h`, and what follows it. */
struct constraint_t
{
    std::string_view m_Keyword;
    std::string m_Argument;
};

/** The definition of one column. */
struct column_t
{
    std::string m_Name;
    std::string m_Type;
    std::vector<constraint_t> m_Constraints;
    bool m_GeneratedKey = false; ///< the database assigns the value
};

/** What the tables of all models have in common, and by which a storage lists them. */
class tableBase_t
{
public:
    /** With `usesForeignKeys`, statements that write switch the checks of foreign keys on first. */
    tableBase_t(std::string name, std::vector<column_t> columns, bool usesForeignKeys = false);
    virtual ~tableBase_t();

    const std::string& Name() const { return m_Name; }
    const std::vector<column_t>& Columns() const { return m_Columns; }
    bool UsesForeignKeys() const { return m_UsesForeignKeys; }
    /** Whether the database assigns the values of a column. */
    bool HasGeneratedKey() const;

private:
    std::string m_Name;
    std::vector<column_t> m_Columns;
    bool m_UsesForeignKeys;
};

/** The table of one model. */
template<class Model>
class table_t : public tableBase_t
{
public:
    using tableBase_t::tableBase_t;
};

} // namespace DatabaseORM
