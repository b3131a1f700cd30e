#pragma once

#include "Plugins/ObjectStore.h"

#include <nlohmann/json_fwd.hpp>

#include <string>
#include <vector>

namespace Host::Cli {

/** The document of `show` about these `objects`, which must be in `store`. */
nlohmann::ordered_json showJson(const ObjectStore& store, const std::vector<const PI::CObject*>& objects);

/** The document of `show` about the property of `objects` that is called `name`. Throws `Failure`. */
nlohmann::ordered_json showPropertyJson(const ObjectStore& store,
                                        const std::vector<const PI::CObject*>& objects,
                                        const std::string& name);

} // namespace Host::Cli
