#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace DatabaseORM {

/** A constraint of a column: a keyword of `Keywords.h` and the text after it. */
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

/** The common base of the tables of all models. A storage has a list of them. */
class tableBase_t
{
public:
    /** With `usesForeignKeys`, statements that write first switch on the checks of foreign keys. */
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
