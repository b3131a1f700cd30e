#pragma once

#include "Plugins/ObjectStore.h"

#include <string>
#include <vector>

namespace Host::Cli {

/**
 * The objects of `store` that a user calls `name`, which may also be a controller's name. Throws `Failure` as
 * `ObjectStore::named` does, and when the name is that of a drive that has never answered.
 */
std::vector<const PI::CObject*> namedObjects(const ObjectStore& store, const std::string& name);

} // namespace Host::Cli
