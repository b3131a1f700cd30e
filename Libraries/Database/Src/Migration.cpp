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

std::string quoted(const std::string& name)
{
    std::string text = "\"";
    for (const char character : name)
        text += character == '"' ? "\"\"" : std::string(1, character);
    return text + '"';
}

/** An index or a trigger that another program has put on one of the tables. */
struct CAddition
{
    std::string m_Type;
    std::string m_Name;
    std::string m_Text; ///< the statement that created it
};

std::vector<CAddition> additionsTo(CSqliteConnection& connection, const std::string& table)
{
    const std::vector<std::string> values =
        connection.Run("SELECT type, name, sql FROM sqlite_master WHERE tbl_name = '" + table +
                       "' AND type IN ('index', 'trigger') AND sql IS NOT NULL ORDER BY rowid");
    std::vector<CAddition> additions;
    for (std::size_t position = 0; position + 2 < values.size(); position += 3)
        additions.push_back({values[position], values[position + 1], values[position + 2]});
    return additions;
}

/** Statements that change nothing. They fail when a trigger of the table does not fit its columns. */
std::string everyChangeText(const DatabaseORM::tableBase_t& table)
{
    std::string assignments;
    for (const DatabaseORM::column_t& column : table.Columns())
        assignments += (assignments.empty() ? "" : ", ") + column.m_Name + " = " + column.m_Name;
    return "EXPLAIN INSERT INTO " + table.Name() + " DEFAULT VALUES; EXPLAIN UPDATE " + table.Name() +
           " SET " + assignments + "; EXPLAIN DELETE FROM " + table.Name() + ";";
}

/** Returns whether the table now has all of `additions`. One that does not fit stays on the former table. */
bool takeOver(CSqliteConnection& connection, const DatabaseORM::tableBase_t& table,
              const std::vector<CAddition>& additions)
{
    bool all = true;
    for (const CAddition& addition : additions)
        all = connection.Attempt("DROP " + addition.m_Type + " " + quoted(addition.m_Name) + "; " +
                                 addition.m_Text + "\n;" + everyChangeText(table)) &&
              all;
    return all;
}

// A name for the former table that is not yet used in the file.
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
    const std::vector<CAddition> additions = additionsTo(connection, table.Name());
    const std::string former = quoted(freeName(connection, table.Name() + "_version" + version));
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
    const bool hasAll =
        taken == formerColumns.size() && countRows(connection, table.Name()) == countRows(connection, former);
    if (takeOver(connection, table, additions) && hasAll)
        connection.Run("DROP TABLE " + former);
}

} // namespace

void refuseNewer(CSqliteConnection& connection)
{
    const std::string version = connection.Run("PRAGMA user_version").front();
    if (std::stoll(version) > SCHEMA_VERSION)
        connection.Fail("a newer release made its tables (version " + version + ", this release knows " +
                        std::to_string(SCHEMA_VERSION) + "), so it is left as it is");
}

void migrate(CSqliteConnection& connection)
{
    const std::string present = std::to_string(SCHEMA_VERSION);
    if (connection.Run("PRAGMA user_version").front() == present)
        return;
    // References in views and triggers of other programs must keep the tables' names. They must not follow a
    // table that is renamed.
    connection.Run("PRAGMA legacy_alter_table = ON; BEGIN IMMEDIATE");
    // Another process may have migrated the file before this one got the lock.
    refuseNewer(connection);
    const std::string version = connection.Run("PRAGMA user_version").front();
    if (version != present) {
        const DatabaseORM::storage_t storage = makeStorage();
        connection.Run(dropTriggersText(storage));
        for (const auto& table : storage.m_Tables)
            rebuild(connection, *table, version);
        connection.Run(createTriggersText(storage));
        connection.Run("PRAGMA user_version = " + present);
    }
    connection.Run("COMMIT; PRAGMA legacy_alter_table = OFF");
}

} // namespace Database
