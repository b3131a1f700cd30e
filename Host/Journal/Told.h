#pragma once

#include "Facts/DriveEvent.h"
#include "Journal/Entry.h"

#include <vector>

namespace Host::Journal {

/**
 * Removes the entries that one of the `events` of the same look already tells. An event whose drive is not
 * known removes one entry with its number.
 */
std::vector<Entry> withoutTold(std::vector<Entry> entries, const std::vector<Cli::DriveEvent>& events);

} // namespace Host::Journal
