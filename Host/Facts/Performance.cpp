#include "Facts/Performance.h"

#include "Base/Text.h"
#include "Facts/FactTable.h"
#include "Facts/PageFields.h"
#include "Facts/PropertyText.h"
#include "Facts/Silence.h"

#include <cmath>
#include <string_view>
#include <variant>

namespace Host::Cli {
namespace {

struct Row
{
    const char* m_Fact;
    const char* m_Unit;
    const char* m_Warning = nullptr; ///< the fact that is its limit; null: none
    const char* m_Critical = nullptr;
    bool m_AlertsBelow = false;
    bool (*m_Condition)(const Drive& drive) = nullptr; ///< whether the drive has it; null: always
};

constexpr Row ROWS[] = {
    {"temperature", "C", "warningTemperature", "criticalTemperature"},
    {"percentageUsed", "%"},
    {"spare", "%", "spareThreshold", nullptr, true, reportsSpare},
    {"mediaErrors", "c"},
    {"unsafeShutdowns", "c"},
    {"powerOnHours", "c"},
    {"dataReadBytes", "B"},
    {"dataWrittenBytes", "B"},
};

/** A fact as a decimal number; empty when it is not known, or is none. */
struct NumberText
{
    std::string operator()(std::uint64_t number) const
    {
        return number == UNKNOWN_COUNTER ? "" : std::to_string(number);
    }
    std::string operator()(std::int32_t number) const { return std::to_string(number); }
    std::string operator()(float number) const
    {
        return std::isfinite(number) ? numberText(static_cast<double>(number)) : "";
    }
    template<typename Other>
    std::string operator()(const Other& /*value*/) const
    {
        return {};
    }
};

std::string numberOf(const char* fact, const Drive& drive)
{
    return fact != nullptr ? std::visit(NumberText(), factOf(fact).m_Value(drive)) : std::string();
}

} // namespace

std::vector<PerformanceFigure> performanceOf(const Drive& drive)
{
    std::vector<PerformanceFigure> figures;
    if (isSilent(drive))
        return figures;
    for (const Row& row : ROWS) {
        const PerformanceFigure figure = {row.m_Fact,
                                          numberOf(row.m_Fact, drive),
                                          row.m_Unit,
                                          numberOf(row.m_Warning, drive),
                                          numberOf(row.m_Critical, drive),
                                          row.m_AlertsBelow};
        if (!figure.m_Value.empty() && (row.m_Condition == nullptr || row.m_Condition(drive)))
            figures.push_back(figure);
    }
    return figures;
}

std::string performanceText(const std::string& key, const std::vector<PerformanceFigure>& figures)
{
    std::string head = monitoringText(key) + '_';
    // No label may have an equals sign.
    std::erase(head, '=');
    std::string text;
    for (const PerformanceFigure& figure : figures) {
        // A range that ends with a colon has no upper end.
        const auto limit = [&](const std::string& number) {
            return number.empty() || !figure.m_AlertsBelow ? number : number + ':';
        };
        std::string limits = ';' + limit(figure.m_Warning) + ';' + limit(figure.m_Critical);
        limits.erase(limits.find_last_not_of(';') + 1);
        if (!text.empty())
            text += ' ';
        text.append("'").append(head).append(figure.m_Fact).append("'=");
        text.append(figure.m_Value).append(figure.m_Unit).append(limits);
    }
    return text;
}

std::string monitoringText(const std::string& text)
{
    // Quotes are among them because such lines end up in commands of notifications.
    constexpr std::string_view refused = "|'\"`";
    std::string line;
    for (const char each : text) {
        const bool isGap = each == ' ' || each == '\n';
        if (refused.find(each) == std::string_view::npos && !(isGap && line.ends_with(' ')))
            line += isGap ? ' ' : each;
    }
    return printable(line);
}

} // namespace Host::Cli
