#pragma once

#include "Documents/MetricsWriter.h"
#include "Facts/Snapshot.h"

#include <vector>

namespace Host::Cli {

/** What is known of each drive. A drive that does not answer keeps the figures of its last answer. */
void addDriveMetrics(MetricsWriter& writer, const Snapshot& snapshot);

/** The families of these metrics, in their order. Each has the label "drive" beside its own. */
std::vector<MetricFamily> driveMetricFamilies();

} // namespace Host::Cli
