#pragma once

#include "Facts/DriveEvent.h"
#include "Facts/Observation.h"
#include "Journal/Entry.h"

#include <vector>

namespace Host::Journal {

/**
 * The plug-in's event that all warnings have cleared is about the drive's own warnings only. For each such
 * event of `events`, returns the conditions of its drive that still hold. Those that `entries` of the same
 * look already tell are left out.
 */
std::vector<Entry> remaining(const Cli::Observation& now, const std::vector<Cli::DriveEvent>& events,
                             const std::vector<Entry>& entries);

} // namespace Host::Journal
