#pragma once

#include <cstdint>
#include <string_view>

namespace Host::Cli {

enum class MetricType : std::uint8_t
{
    Gauge,     ///< can go up and down
    Counter,   ///< only grows; its name ends in "_total"
    Histogram, ///< counts durations by their length
    Info,      ///< always 1, its labels are what counts; its name ends in "_info"
};

/** Metrics with one name. They have the conventions of Prometheus: base units, and names that end in them. */
struct MetricFamily
{
    std::string_view m_Name;
    std::string_view m_Help;
    std::string_view m_Label = {}; ///< tells its metrics of one drive apart; empty: there is only one
    bool m_IsHistogram = false;

    constexpr MetricType type() const
    {
        if (m_IsHistogram)
            return MetricType::Histogram;
        if (m_Name.ends_with("_total"))
            return MetricType::Counter;
        return m_Name.ends_with("_info") ? MetricType::Info : MetricType::Gauge;
    }

    /** The name without the ending that its type has. */
    constexpr std::string_view stem() const
    {
        if (type() == MetricType::Counter || type() == MetricType::Info)
            return m_Name.substr(0, m_Name.rfind('_'));
        return m_Name;
    }

    /** The unit in its name; empty: none. */
    constexpr std::string_view unit() const
    {
        const std::string_view last = stem().substr(stem().rfind('_') + 1);
        for (const std::string_view unit : {"bytes", "celsius", "ratio", "seconds"})
            if (last == unit)
                return unit;
        return {};
    }
};

} // namespace Host::Cli
