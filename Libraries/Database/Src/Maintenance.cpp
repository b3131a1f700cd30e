#include "Inspection.h"
#include "SharedDatabase.h"

#include <Database/Database.h>
#include <Database/Maintenance.h>
#include <DatabaseORM/DatabaseException.h>
#include <DatabaseORM/Models.h>
#include <DatabaseORM/ValueText.h>

namespace {

template<typename Value, typename Text>
std::string deleteOthers(const char* table, const char* key, const std::vector<Value>& kept, Text text)
{
    std::string list;
    for (const Value& value : kept)
        list += (list.empty() ? "" : ", ") + text(value);
    return std::string("DELETE FROM ") + table + " WHERE HostName = '" + RaidDataModels::LOCAL_HOST +
           "' AND " + key + " NOT IN (" + list + ");";
}

} // namespace

void checkDatabase()
{
    if (!Database::sharedDatabase()->KeepsRows())
        return;
    const auto storage = getDatabasePointer();
    const auto database = storage->m_Access;
    const std::vector<std::string> findings = database->query("PRAGMA quick_check");
    if (findings != std::vector<std::string>{"ok"})
        throw DBEXCEPTION::DatabaseException("the database is damaged: " +
                                             (findings.empty() ? "no answer" : findings.front()));
    const std::string fault =
        Database::tableFault(*storage, [&](const std::string& sql) { return database->query(sql); });
    if (!fault.empty())
        throw DBEXCEPTION::DatabaseException(fault);
    // With a read-only file a transaction can begin, but no statement can write. Nothing is changed.
    database->query("BEGIN IMMEDIATE; DELETE FROM Plugin WHERE 0; ROLLBACK;");
}

std::int64_t countDatabaseChanges()
{
    return Database::sharedDatabase()->Changes();
}

bool removeOtherObjects(const std::vector<std::int32_t>& adapterNumbers,
                        const std::vector<std::string>& driveKeys, std::int64_t changes)
{
    const auto quoted = [](const std::string& text) { return "'" + DatabaseORM::escapeQuotes(text) + "'"; };
    const auto decimal = [](std::int32_t number) { return std::to_string(number); };
    return Database::sharedDatabase()->RunUnlessChanged(
        "BEGIN IMMEDIATE;" + deleteOthers("Adapter", "AdapterNumber", adapterNumbers, decimal) +
            deleteOthers("PD", "DriveKey", driveKeys, quoted) + "COMMIT;",
        changes);
}

std::optional<std::string> takeDatabaseFailure()
{
    return Database::sharedDatabase()->TakeFailure();
}
