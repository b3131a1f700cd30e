#pragma once

#include "Facts/DriveCheck.h"
#include "Facts/ServiceFigures.h"
#include "Facts/Snapshot.h"

#include <vector>

namespace Host::Cli {

/**
 * How the drives of a machine fare as its service sees them, in one sentence. `drives` are those of
 * `snapshot`. A service that cannot watch its drives does not know it; one without a journal is a warning.
 */
Judgement judgeService(const std::vector<DriveCheck>& drives, const Snapshot& snapshot,
                       const ServiceFigures& figures);

} // namespace Host::Cli
