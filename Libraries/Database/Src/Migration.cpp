#include "Migration.h"

#include "Schema.h"

#include <algorithm>
#include <string>
#include <vector>

namespace Database {

namespace {

std::vector<std::string> columnsOf(CSqliteConnection& connection, const std::string& table)
{
    return connection.Run("SELECT name FROM pragma_table_info('" + table + "')");
}

std::string countRows(CSqliteConnection& connection, const std::string& table)
{
    return connection.Run("SELECT COUNT(*) FROM " + table).front();
}

// A name for the former table that the file does not hold yet.
std::string freeName(CSqliteConnection& connection, const std::string& wanted)
{
    std::string name = wanted;
    for (int number = 2; !columnsOf(connection, name).empty(); ++number)
        name = wanted + "_" + std::to_string(number);
    return name;
}

void rebuild(CSqliteConnection& connection, const DatabaseORM::tableBase_t& table, const std::string& version)
{
    const std::vector<std::string> formerColumns = columnsOf(connection, table.Name());
    if (formerColumns.empty()) {
        connection.Run(createTableText(table));
        return;
    }
    const std::string former = '"' + freeName(connection, table.Name() + "_version" + version) + '"';
    connection.Run("ALTER TABLE " + table.Name() + " RENAME TO " + former);
    connection.Run(createTableText(table));

    std::string common;
    std::size_t taken = 0;
    for (const DatabaseORM::column_t& column : table.Columns()) {
        if (std::find(formerColumns.begin(), formerColumns.end(), column.m_Name) == formerColumns.end())
            continue;
        common += (common.empty() ? "" : ", ") + column.m_Name;
        ++taken;
    }
    if (!common.empty())
        connection.Run("INSERT INTO " + table.Name() + " (" + common + ") SELECT " + common + " FROM " +
                       former);
    if (taken == formerColumns.size() && countRows(connection, table.Name()) == countRows(connection, former))
        connection.Run("DROP TABLE " + former);
}

} // namespace

void migrate(CSqliteConnection& connection)
{
    const std::string present = std::to_string(SCHEMA_VERSION);
    if (connection.Run("PRAGMA user_version").front() == present)
        return;
    connection.Run("BEGIN IMMEDIATE");
    // Somebody else may have done it before the lock was ours.
    const std::string version = connection.Run("PRAGMA user_version").front();
    if (version != present) {
        const DatabaseORM::storage_t storage = makeStorage();
        connection.Run(dropTriggersText(storage));
        for (const auto& table : storage.m_Tables)
            rebuild(connection, *table, version);
        connection.Run(createTriggersText(storage));
        connection.Run("PRAGMA user_version = " + present);
    }
    connection.Run("COMMIT");
}

} // namespace Database
