#pragma once

#include <cstdint>
#include <string_view>

namespace Host::Cli {

/** How metrics are written. */
enum class MetricsFormat : std::uint8_t
{
    Text,        ///< the text format 0.0.4 of Prometheus
    OpenMetrics, ///< OpenMetrics 1.0.0
};

/** The type of the content in the header of an answer. */
std::string_view contentType(MetricsFormat format);

/**
 * The format that a client prefers. `accept` is the header of its request; empty: it has none. A client that
 * names neither format gets the text format.
 */
MetricsFormat chosenFormat(std::string_view accept);

} // namespace Host::Cli
