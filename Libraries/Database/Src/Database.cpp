#include "NoDatabase.h"
#include "Schema.h"
#include "SharedDatabase.h"
#include "SqliteDatabase.h"

#include <Database/Database.h>

#include <mutex>
#include <optional>
#include <system_error>
#include <utility>

namespace {

struct CSharedStorage
{
    std::mutex m_Lock;
    std::optional<std::filesystem::path> m_File = std::filesystem::path(); ///< none: no rows are kept
    std::shared_ptr<DatabaseORM::storage_t> m_Storage;
    std::shared_ptr<Database::ISharedDatabase> m_Database; ///< the one that `m_Storage` was made with
};

CSharedStorage& sharedStorage()
{
    // Never destroyed: a plug-in's worker may still ask for the storage while the process ends.
    static CSharedStorage& shared = *new CSharedStorage;
    return shared;
}

// SQLite gives special meanings to names such as ":memory:". An absolute path has none of them.
std::filesystem::path absolutePath(const std::filesystem::path& file)
{
    std::error_code error;
    std::filesystem::path absolute = file.empty() ? file : std::filesystem::absolute(file, error);
    return error ? file : absolute;
}

/** Makes the storage if there is none. */
void make(CSharedStorage& shared)
{
    if (shared.m_Storage)
        return;
    auto storage = std::make_shared<DatabaseORM::storage_t>(Database::makeStorage());
    if (shared.m_File)
        shared.m_Database = std::make_shared<Database::CSqliteDatabase>(*shared.m_File);
    else
        shared.m_Database = std::make_shared<Database::CNoDatabase>();
    storage->m_Access = shared.m_Database;
    shared.m_Storage = std::move(storage);
}

/** The next storage is made for `file`. */
void set(std::optional<std::filesystem::path> file)
{
    CSharedStorage& shared = sharedStorage();
    const std::lock_guard guard(shared.m_Lock);
    shared.m_File = std::move(file);
    shared.m_Storage.reset();
    shared.m_Database.reset();
}

} // namespace

void setDatabaseFile(const std::filesystem::path& file)
{
    set(absolutePath(file));
}

void keepNoRows()
{
    set(std::nullopt);
}

std::shared_ptr<DatabaseORM::storage_t> getDatabasePointer()
{
    CSharedStorage& shared = sharedStorage();
    const std::lock_guard guard(shared.m_Lock);
    make(shared);
    return shared.m_Storage;
}

std::shared_ptr<Database::ISharedDatabase> Database::sharedDatabase()
{
    CSharedStorage& shared = sharedStorage();
    const std::lock_guard guard(shared.m_Lock);
    make(shared);
    return shared.m_Database;
}
