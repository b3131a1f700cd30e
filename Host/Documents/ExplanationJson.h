#pragma once

#include "Facts/Explanation.h"

#include <nlohmann/json_fwd.hpp>

#include <vector>

namespace Host::Cli {

/** The list of explanations in the document of `show`. */
nlohmann::ordered_json explanationsJson(const ObjectStore& store,
                                        const std::vector<const PI::CObject*>& objects);

} // namespace Host::Cli
