#pragma once

#include <string>
#include <vector>

namespace DatabaseWrapper {

/**
 * Access to a database. The database library implements it; the statement builder knows only this interface.
 */
class DatabaseDAO
{
public:
    DatabaseDAO() = default;
    virtual ~DatabaseDAO();
    DatabaseDAO(const DatabaseDAO&) = delete;
    DatabaseDAO& operator=(const DatabaseDAO&) = delete;

    /**
     * Runs every statement of `sql` and returns all result values, row by row, as texts; NULL comes as
     * "NULL". Throws `DBEXCEPTION::DatabaseException` on any failure. May be called from several threads.
     */
    virtual std::vector<std::string> query(const std::string& sql) = 0;
};

} // namespace DatabaseWrapper
