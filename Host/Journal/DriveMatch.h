#pragma once

#include "Facts/Observation.h"
#include "Journal/State.h"

#include <optional>
#include <vector>

namespace Host::Journal {

/**
 * For each of `drives`, which one of `former` it is, as an index; none for a newcomer. Each former drive is
 * at most one of them. A serial number that was shared and no longer is, or the other way round, changes the
 * key of a drive that stays where it is; that is still the same drive.
 */
std::vector<std::optional<std::size_t>> matchDrives(const std::vector<DriveState>& former,
                                                    const std::vector<Cli::ObservedDrive>& drives);

} // namespace Host::Journal
