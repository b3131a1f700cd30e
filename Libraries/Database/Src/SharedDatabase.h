#pragma once

#include <DatabaseORM/DatabaseDAO.h>

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

namespace Database {

/** The access object of the shared storage, with what a host asks of it besides queries. */
class ISharedDatabase : public DatabaseWrapper::DatabaseDAO
{
public:
    /** Whether rows outlive the statements that write them. */
    virtual bool KeepsRows() const = 0;

    /** How many rows all queries have changed since the file was opened. */
    virtual std::int64_t Changes() = 0;

    /**
     * Runs `sql` and returns true. Returns false, without running it, when `Changes()` is no longer
     * `changes`.
     */
    virtual bool RunUnlessChanged(const std::string& sql, std::int64_t changes) = 0;

    /** The message of the last query that failed since the previous call. */
    virtual std::optional<std::string> TakeFailure() = 0;
};

/** The database of the storage that `getDatabasePointer` gives. */
std::shared_ptr<ISharedDatabase> sharedDatabase();

} // namespace Database
