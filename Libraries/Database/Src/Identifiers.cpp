#include "Identifiers.h"

#include "Schema.h"

#include <cstdint>
#include <limits>
#include <string>

namespace Database {

namespace {

constexpr std::int32_t HIGHEST_IDENTIFIER = std::numeric_limits<std::int32_t>::max() / 2;

std::string findBeyondText(const std::string& table)
{
    return "SELECT ID FROM " + table + " WHERE ID > " + std::to_string(HIGHEST_IDENTIFIER) + " LIMIT 1";
}

std::string renumberText(const std::string& table)
{
    // Far below zero first, so that no new identifier meets a former one.
    return "BEGIN IMMEDIATE; UPDATE " + table + " SET ID = ID - 1099511627776; UPDATE " + table +
           " SET ID = Fresh FROM (SELECT ID AS Former, ROW_NUMBER() OVER (ORDER BY ID) AS Fresh FROM " +
           table + ") WHERE ID = Former; COMMIT;";
}

} // namespace

void renumber(CSqliteConnection& connection)
{
    const DatabaseORM::storage_t storage = makeStorage();
    for (const auto& table : storage.m_Tables)
        if (!connection.Run(findBeyondText(table->Name())).empty())
            connection.Run(renumberText(table->Name()));
}

} // namespace Database
