#pragma once

#include "SharedDatabase.h"

namespace Database {

/**
 * The access object of a storage that keeps nothing. It answers as if all tables were empty, and reads only
 * the part of a statement that it needs for that.
 */
class CNoDatabase : public ISharedDatabase
{
public:
    std::vector<std::string> query(const std::string& sql) override;
    bool KeepsRows() const override { return false; }
    std::int64_t Changes() override { return 0; }
    bool RunUnlessChanged(const std::string& sql, std::int64_t changes) override;
    std::optional<std::string> TakeFailure() override { return std::nullopt; }
};

} // namespace Database
