#pragma once

#include "Core/ObjectStore.h"

#include <filesystem>
#include <functional>
#include <string>

// What is kept from one run to the next in a folder: the database of the plug-ins' rows, and the numbers of
// the adapters.
namespace Host {

std::filesystem::path databaseFile(const std::filesystem::path& folder);

/**
 * Has the process keep its data in `folder`, which is made when it is missing. Throws `Failure` when it
 * cannot be made; numbers that cannot be read are told to `warn` and given anew.
 */
void openDataFolder(const std::filesystem::path& folder, const std::function<void(const std::string&)>& warn);

/**
 * Drops the rows of what `inventory` no longer holds, and keeps the numbers that its adapters were given.
 * What fails is told to `warn`: it takes nothing away from the inventory.
 */
void keepInventory(const std::filesystem::path& folder, const ObjectStore& inventory,
                   const std::function<void(const std::string&)>& warn);

/** Keeps the numbers that adapters were given so far; what fails is told to `warn`. */
void keepAdapterNumbers(const std::filesystem::path& folder,
                        const std::function<void(const std::string&)>& warn);

} // namespace Host
