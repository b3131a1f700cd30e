#pragma once

#include "Journal/Entry.h"

#include <nlohmann/json_fwd.hpp>

namespace Host::Cli {

/** The line of `watch` for what no event of the plug-in tells. */
nlohmann::ordered_json entryJson(const Journal::Entry& entry);

} // namespace Host::Cli
