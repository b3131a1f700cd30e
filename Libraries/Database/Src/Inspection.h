#pragma once

#include <DatabaseORM/Storage.h>

#include <functional>
#include <string>
#include <vector>

namespace Database {

/** Runs a statement and returns all its values. */
using Query = std::function<std::vector<std::string>(const std::string& sql)>;

/**
 * Names what the tables that `query` sees lack compared with those of `storage`; empty when they lack
 * nothing.
 */
std::string tableFault(const DatabaseORM::storage_t& storage, const Query& query);

} // namespace Database
