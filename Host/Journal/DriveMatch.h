#pragma once

#include "Facts/Observation.h"
#include "Journal/State.h"

#include <optional>
#include <vector>

namespace Host::Journal {

/**
 * For each of `drives`, the index of the former drive that it is, or nothing for a new drive. Each former
 * drive is used at most once. When several drives begin or end to share a serial number, the key of a drive
 * changes. It is still matched by its place.
 */
std::vector<std::optional<std::size_t>> matchDrives(const std::vector<DriveState>& former,
                                                    const std::vector<Cli::ObservedDrive>& drives);

} // namespace Host::Journal
