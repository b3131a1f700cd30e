#pragma once

#include "Journal/Entry.h"

#include <nlohmann/json_fwd.hpp>

namespace Host::Cli {

/** The line that `watch --json` prints for a change that no event of the plug-in tells. */
nlohmann::ordered_json entryJson(const Journal::Entry& entry);

} // namespace Host::Cli
