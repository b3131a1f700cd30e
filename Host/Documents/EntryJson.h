#pragma once

#include "Journal/Entry.h"
#include "Journal/NumberedEntry.h"

#include <nlohmann/json_fwd.hpp>

namespace Host::Cli {

/** The line that `watch --json` prints for a change that no event of the plug-in tells. */
nlohmann::ordered_json entryJson(const Journal::Entry& entry);

/** The same after the entry's number in the journal. */
nlohmann::ordered_json numberedEntryJson(const Journal::NumberedEntry& entry);

} // namespace Host::Cli
