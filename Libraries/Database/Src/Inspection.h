#pragma once

#include <DatabaseORM/Storage.h>

#include <functional>
#include <string>
#include <vector>

namespace Database {

/** Runs a statement and returns all its values. */
using Query = std::function<std::vector<std::string>(const std::string& sql)>;

/**
 * What the tables of `storage` have and the tables that `query` reads lack; empty when nothing is missing.
 */
std::string tableFault(const DatabaseORM::storage_t& storage, const Query& query);

} // namespace Database
