#include <DatabaseORM/DatabaseException.h>
#include <DatabaseORM/StatementText.h>

#include <limits>
#include <locale>
#include <sstream>

namespace DatabaseORM {

namespace {

constexpr std::string_view CANNOT_READ_ID = "Storage query exception thrown! Cannot read ID from database!";

std::string prefix(const tableBase_t& table)
{
    return table.UsesForeignKeys() ? "PRAGMA foreign_keys = ON; " : "";
}

void append(std::string& list, const std::string& item)
{
    if (!list.empty())
        list += ", ";
    list += item;
}

} // namespace

std::string insertText(const tableBase_t& table, const std::vector<slot_t>& slots)
{
    std::string names;
    std::string values;
    for (const slot_t& slot : slots) {
        if (slot.m_Column.empty())
            continue;
        append(names, slot.m_Column);
        append(values, slot.m_Value);
    }
    std::string text = prefix(table) + "INSERT INTO " + table.Name() + " ";
    if (table.HasGeneratedKey())
        text += "(" + names + ") ";
    return text + "VALUES(" + values + ");";
}

std::string updateText(const tableBase_t& table, const std::vector<slot_t>& slots, std::int64_t identifier)
{
    std::string assignments;
    for (const slot_t& slot : slots)
        if (!slot.m_Column.empty())
            append(assignments, slot.m_Column + "=" + slot.m_Value);
    return prefix(table) + "UPDATE " + table.Name() + " SET " + assignments +
           " WHERE ID = " + std::to_string(identifier) + ";";
}

std::string removeText(const tableBase_t& table, const std::string& condition)
{
    return prefix(table) + "DELETE FROM " + table.Name() + " " + " WHERE" + condition;
}

std::string selectText(const tableBase_t& table, const std::string& alias, const std::string& condition)
{
    return "SELECT * FROM " + table.Name() + " " + alias + " " + " WHERE" + condition;
}

std::string maxText(const std::string& table, const std::string& column)
{
    return "SELECT MAX(" + column + ") FROM " + table;
}

std::string equalText(const std::string& qualifier, const std::string& column, const std::string& value)
{
    const std::string name = qualifier.empty() ? column : qualifier + "." + column;
    return " " + name + " = '" + value + "'";
}

std::string bothText(const std::string& first, const std::string& second)
{
    return " (" + first + ") AND (" + second + ") ";
}

std::vector<std::string> runStatement(const storage_t& storage, const std::string& statement,
                                      std::string_view context)
{
    try {
        return storage.m_Access->query(statement);
    } catch (const DBEXCEPTION::DatabaseException& exception) {
        throw DBEXCEPTION::DatabaseException(std::string(context) + " (" + exception.what() + ")");
    }
}

std::uint32_t firstNumber(const std::vector<std::string>& result)
{
    if (result.empty())
        return 0;
    std::istringstream stream(result.front());
    stream.imbue(std::locale::classic());
    std::uint32_t number = 0;
    stream >> number;
    return number;
}

std::int32_t takeGeneratedKey(const storage_t& storage, const tableBase_t& table, slot_t& slot)
{
    const std::uint32_t maximum =
        firstNumber(runStatement(storage, maxText(table.Name(), slot.m_Column), CANNOT_READ_ID));
    slot = {};
    const bool wraps = maximum == std::numeric_limits<std::uint32_t>::max();
    return wraps ? 1 : static_cast<std::int32_t>(maximum + 1);
}

} // namespace DatabaseORM
