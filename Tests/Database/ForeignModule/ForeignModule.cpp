#include <DatabaseORM/Models.h>
#include <DatabaseORM/StatementBuilder.h>

#include <cstdint>
#include <string>

using DatabaseORM::condition_t;
using RaidDataModels::PD;

/** Stores a drive with this module's own builder, reads it back and returns it. */
extern "C" __attribute__((visibility("default"))) void
storeAndFind(const DatabaseORM::storage_t& storage, const std::string& key, std::string& found)
{
    PD drive;
    drive.m_HostName = "localhost";
    drive.m_DriveKey = DatabaseORM::escapeQuotes(key);
    DatabaseORM::insert(storage, drive);
    for (const PD& row : DatabaseORM::select(storage, condition_t(&PD::m_DriveKey, drive.m_DriveKey)))
        found += row.m_DriveKey;
}

/** Makes a statement fail in the database library and catches the exception here; returns its message. */
extern "C" __attribute__((visibility("default"))) void failAndCatch(const DatabaseORM::storage_t& storage,
                                                                    std::string& message)
{
    try {
        storage.m_Access->query("not a statement");
    } catch (const DBEXCEPTION::DatabaseException& exception) {
        message = exception.what();
    }
}
