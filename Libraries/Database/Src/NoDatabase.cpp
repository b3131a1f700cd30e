#include "NoDatabase.h"

#include <DatabaseORM/ValueText.h>

namespace Database {

std::vector<std::string> CNoDatabase::query(const std::string& sql)
{
    // A maximum is the only statement of the builder that has a result without any row.
    if (sql.starts_with("SELECT MAX("))
        return {std::string(DatabaseORM::NULL_TEXT)};
    return {};
}

bool CNoDatabase::RunUnlessChanged(const std::string& /*sql*/, std::int64_t changes)
{
    return changes == Changes();
}

} // namespace Database
