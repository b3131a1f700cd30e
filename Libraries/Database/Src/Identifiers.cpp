#include "Identifiers.h"

#include "Schema.h"

#include <cstdint>
#include <limits>
#include <string>
#include <vector>

namespace Database {

namespace {

constexpr std::int32_t HIGHEST_IDENTIFIER = std::numeric_limits<std::int32_t>::max() / 2;

bool hasEnough(CSqliteConnection& connection, const std::string& table)
{
    return connection
        .Run("SELECT ID FROM " + table + " WHERE ID NOT BETWEEN 1 AND " + std::to_string(HIGHEST_IDENTIFIER) +
             " LIMIT 1")
        .empty();
}

void moveRow(CSqliteConnection& connection, const std::string& table, std::int64_t former, std::int64_t fresh)
{
    connection.Run("UPDATE " + table + " SET ID = " + std::to_string(fresh) +
                   " WHERE ID = " + std::to_string(former));
}

void numberFromOne(CSqliteConnection& connection, const std::string& table)
{
    connection.Run("BEGIN IMMEDIATE");
    std::vector<std::int64_t> formers;
    for (const std::string& text : connection.Run("SELECT ID FROM " + table + " ORDER BY ID"))
        formers.push_back(std::stoll(text));
    // Rows whose identifier grows are updated from the last to the first, the others from the first to the
    // last. So no new identifier meets an old one.
    const auto count = static_cast<std::int64_t>(formers.size());
    for (std::int64_t fresh = count; fresh > 0; --fresh)
        if (const std::int64_t former = formers[static_cast<std::size_t>(fresh - 1)]; former < fresh)
            moveRow(connection, table, former, fresh);
    for (std::int64_t fresh = 1; fresh <= count; ++fresh)
        if (const std::int64_t former = formers[static_cast<std::size_t>(fresh - 1)]; former > fresh)
            moveRow(connection, table, former, fresh);
    connection.Run("COMMIT");
}

} // namespace

void renumber(CSqliteConnection& connection)
{
    const DatabaseORM::storage_t storage = makeStorage();
    for (const auto& table : storage.m_Tables)
        if (!hasEnough(connection, table->Name()))
            numberFromOne(connection, table->Name());
}

} // namespace Database
