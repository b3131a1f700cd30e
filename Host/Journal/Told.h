#pragma once

#include "Facts/DriveEvent.h"
#include "Journal/Entry.h"

#include <vector>

namespace Host::Journal {

/**
 * The entries that none of `events`, which the same look brought, tells already. An event whose drive nobody
 * knows stands for one entry of its number.
 */
std::vector<Entry> withoutTold(std::vector<Entry> entries, const std::vector<Cli::DriveEvent>& events);

} // namespace Host::Journal
