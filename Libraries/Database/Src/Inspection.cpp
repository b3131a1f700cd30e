#include "Schema.h"
#include "SqliteConnection.h"

#include <Database/Maintenance.h>

#include <algorithm>
#include <string>
#include <vector>

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
    const DatabaseORM::storage_t storage = Database::makeStorage();
    for (const auto& table : storage.m_Tables)
        if (std::find(tables.begin(), tables.end(), table->Name()) == tables.end())
            connection.Fail("there is no table " + table->Name());
    return EDatabaseTables::Present;
}
