#pragma once

#include "Documents/MetricsFormat.h"
#include "Facts/MetricFamily.h"
#include "Facts/ServiceFigures.h"
#include "Facts/Snapshot.h"

#include <string>
#include <vector>

namespace Host::Cli {

/**
 * The metrics of all drives and of the service. Figures that are not known are absent. The result depends on
 * the arguments only.
 */
std::string metricsText(const Snapshot& snapshot, const ServiceFigures& figures, MetricsFormat format);

/** The families of the service's own metrics, in their order. */
std::vector<MetricFamily> serviceMetricFamilies();

} // namespace Host::Cli
