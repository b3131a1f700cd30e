#pragma once

#include <DatabaseORM/Storage.h>

#include <functional>
#include <string>
#include <vector>

namespace Database {

/** Runs a statement and gives all its values. */
using Query = std::function<std::vector<std::string>(const std::string& sql)>;

/** What the tables that `query` sees lack of those of `storage`; empty when they lack nothing. */
std::string tableFault(const DatabaseORM::storage_t& storage, const Query& query);

} // namespace Database
