#include "Inspection.h"

#include "Schema.h"
#include "SqliteConnection.h"

#include <Database/Maintenance.h>
#include <DatabaseORM/ValueText.h>

#include <algorithm>

std::string Database::tableFault(const DatabaseORM::storage_t& storage, const Query& query)
{
    for (const auto& table : storage.m_Tables) {
        const std::vector<std::string> columns =
            query("SELECT name FROM pragma_table_info('" + DatabaseORM::escapeQuotes(table->Name()) + "')");
        if (columns.empty())
            return "there is no table " + table->Name();
        for (const DatabaseORM::column_t& column : table->Columns())
            if (std::find(columns.begin(), columns.end(), column.m_Name) == columns.end())
                return "the table " + table->Name() + " has no column " + column.m_Name;
    }
    return {};
}

EDatabaseTables inspectDatabase(const std::filesystem::path& file)
{
    Database::CBusyPolicy patience;
    Database::CSqliteConnection connection =
        Database::CSqliteConnection::ToRead(std::filesystem::absolute(file), patience);
    const std::vector<std::string> findings = connection.Run("PRAGMA quick_check");
    if (findings != std::vector<std::string>{"ok"})
        connection.Fail("damaged: " + (findings.empty() ? "no answer" : findings.front()));
    const std::vector<std::string> tables =
        connection.Run("SELECT name FROM sqlite_master WHERE type = 'table'");
    if (tables.empty())
        return EDatabaseTables::None;
    const long long version = std::stoll(connection.Run("PRAGMA user_version").front());
    if (version != Database::SCHEMA_VERSION)
        return version > Database::SCHEMA_VERSION ? EDatabaseTables::Newer : EDatabaseTables::Foreign;
    const std::string fault = Database::tableFault(
        Database::makeStorage(), [&](const std::string& sql) { return connection.Run(sql); });
    if (!fault.empty())
        connection.Fail(fault);
    return EDatabaseTables::Present;
}
