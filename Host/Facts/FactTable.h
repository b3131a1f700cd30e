#pragma once

#include "Facts/Drives.h"
#include "Facts/MetricFamily.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <variant>
#include <vector>

// The one table of the facts about a drive. Documents, their schemas, the headings of `list`, the additional
// rows of `show`, the metrics of drives and tables in the documents are made from it.
namespace Host::Cli {

/** The value of a fact for a drive now. Nothing when it is not known. */
using FactValue = std::variant<std::monostate, std::string, std::uint64_t, std::uint32_t, std::int32_t, float,
                               bool, Amount, std::vector<std::string>, std::vector<std::uint32_t>>;

enum class FactType : std::uint8_t
{
    Gauge,   ///< can go up and down
    Counter, ///< only grows during the life of a drive
    State,   ///< one word of several
    Text,
};

/** Where a fact comes from. */
enum class FactOrigin : std::uint8_t
{
    Plugin,    ///< a property
    HealthLog, ///< a field of the drive's health log
    Identify,  ///< a field of Identify Controller
    System,    ///< the operating system
    Program,   ///< computed by the program from several of these
};

/** Whether the plug-in does not report a fact. `show` prints these in a section of their own. */
constexpr bool isOwn(FactOrigin origin)
{
    return origin == FactOrigin::HealthLog || origin == FactOrigin::Identify || origin == FactOrigin::System;
}

struct FactSource
{
    FactOrigin m_Origin;
    std::uint32_t m_Place = 0; ///< identifier of the property, or first byte of the field
};

/** A fact as a metric. */
struct FactMetric
{
    MetricFamily m_Family = {};      ///< without a name, the fact is no metric
    std::string_view m_LabelValue{}; ///< of the family's label
    // The metric is the fact's number times the factor, divided by the divisor.
    std::uint32_t m_Factor = 1;
    std::uint32_t m_Divisor = 1;
    bool (*m_Condition)(const Drive& drive) = nullptr; ///< whether the drive has the metric; null: always
};

/** One row of the table. */
struct Fact
{
    const char* m_Key; ///< its member in JSON documents
    const char* m_Caption;
    const char* m_Unit; ///< empty: none
    FactType m_Type;
    FactSource m_Source;
    FactValue (*m_Value)(const Drive& drive);
    std::size_t m_Kind;             ///< which alternative of `FactValue` a known value has
    const char* m_Column = nullptr; ///< its heading in `list`; null: the caption is used
    FactMetric m_Metric = {};
    const char* m_InfoLabel = nullptr; ///< its label in the metric with the texts of a drive; null: none

    constexpr Fact headed(const char* heading) const
    {
        Fact fact = *this;
        fact.m_Column = heading;
        return fact;
    }

    /** In metrics with this name. Its caption is their help. */
    constexpr Fact metric(const char* name) const { return metric(MetricFamily{name, m_Caption}); }

    constexpr Fact metric(const MetricFamily& family, std::string_view labelValue = {}) const
    {
        Fact fact = *this;
        fact.m_Metric.m_Family = family;
        fact.m_Metric.m_LabelValue = labelValue;
        return fact;
    }

    constexpr Fact times(std::uint32_t factor) const
    {
        Fact fact = *this;
        fact.m_Metric.m_Factor = factor;
        return fact;
    }

    /** The metric is a ratio. */
    constexpr Fact percent() const
    {
        Fact fact = *this;
        fact.m_Metric.m_Divisor = 100;
        return fact;
    }

    /** Only drives that fulfil `condition` have the metric. */
    constexpr Fact given(bool (*condition)(const Drive& drive)) const
    {
        Fact fact = *this;
        fact.m_Metric.m_Condition = condition;
        return fact;
    }

    constexpr Fact labelled(const char* infoLabel) const
    {
        Fact fact = *this;
        fact.m_InfoLabel = infoLabel;
        return fact;
    }

    constexpr const char* heading() const { return m_Column != nullptr ? m_Column : m_Caption; }
};

/** The index of the alternative of `FactValue` that holds a `Value`. */
template<typename Value>
constexpr std::size_t factKind()
{
    // Clang 14 cannot make a text at compile time, so this looks at the types alone.
    return []<typename... Kinds>(std::type_identity<std::variant<Kinds...>>) {
        static_assert((std::is_same_v<Value, Kinds> || ...));
        constexpr std::array same = {std::is_same_v<Value, Kinds>...};
        return static_cast<std::size_t>(std::ranges::find(same, true) - same.begin());
    }(std::type_identity<FactValue>());
}

/** All rows, in the order in which documents have them. */
std::span<const Fact> facts();

/** The row with this key. Throws `std::logic_error` when there is none. */
const Fact& factOf(std::string_view key);

} // namespace Host::Cli
