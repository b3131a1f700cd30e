#include "Schema.h"
#include "SqliteDatabase.h"

#include <Database/Database.h>

#include <mutex>
#include <system_error>

namespace {

struct CSharedStorage
{
    std::mutex m_Lock;
    std::filesystem::path m_File;
    std::shared_ptr<DatabaseORM::storage_t> m_Storage;
};

CSharedStorage& sharedStorage()
{
    // Never destroyed: a plug-in's worker may still ask for the storage while the process ends.
    static CSharedStorage& shared = *new CSharedStorage;
    return shared;
}

// SQLite gives names such as ":memory:" a meaning of their own, which no absolute path has.
std::filesystem::path absolutePath(const std::filesystem::path& file)
{
    std::error_code error;
    std::filesystem::path absolute = file.empty() ? file : std::filesystem::absolute(file, error);
    return error ? file : absolute;
}

} // namespace

void setDatabaseFile(const std::filesystem::path& file)
{
    CSharedStorage& shared = sharedStorage();
    const std::lock_guard guard(shared.m_Lock);
    shared.m_File = absolutePath(file);
    shared.m_Storage.reset();
}

std::shared_ptr<DatabaseORM::storage_t> getDatabasePointer()
{
    CSharedStorage& shared = sharedStorage();
    const std::lock_guard guard(shared.m_Lock);
    if (!shared.m_Storage) {
        auto storage = std::make_shared<DatabaseORM::storage_t>(Database::makeStorage());
        storage->m_Access = std::make_shared<Database::CSqliteDatabase>(shared.m_File);
        shared.m_Storage = std::move(storage);
    }
    return shared.m_Storage;
}
