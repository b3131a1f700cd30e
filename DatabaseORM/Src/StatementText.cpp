#include <DatabaseORM/DatabaseException.h>
#include <DatabaseORM/StatementText.h>

#include <algorithm>
#include <charconv>
#include <limits>
#include <system_error>

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
    // The result is that of a text stream. A stream costs much more to construct.
    std::string_view text = result.empty() ? std::string_view() : result.front();
    text.remove_prefix(std::min(text.find_first_not_of(" \t\n\v\f\r"), text.size()));
    const bool isNegative = text.starts_with('-');
    if (isNegative || text.starts_with('+'))
        text.remove_prefix(1);
    std::uint32_t number = 0;
    if (std::from_chars(text.data(), text.data() + text.size(), number).ec == std::errc::result_out_of_range)
        return std::numeric_limits<std::uint32_t>::max();
    return isNegative ? 0 - number : number;
}

std::int32_t runInsertion(const storage_t& storage, const insertion_t& insertion, std::string_view context)
{
    std::int32_t identifier = 0;
    for (const std::string& statement : insertion.m_Maxima) {
        const std::uint32_t maximum = firstNumber(runStatement(storage, statement, CANNOT_READ_ID));
        const bool wraps = maximum == std::numeric_limits<std::uint32_t>::max();
        identifier = wraps ? 1 : static_cast<std::int32_t>(maximum + 1);
    }
    runStatement(storage, insertion.m_Insert, context);
    return identifier;
}

} // namespace DatabaseORM
