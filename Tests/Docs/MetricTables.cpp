#include "Documents/DriveMetrics.h"
#include "Documents/Metrics.h"
#include "InterfaceTables.h"
#include "Tables.h"

#include <array>

namespace DocsTest {
namespace {

using namespace Host::Cli;

std::string metricTypeText(MetricType type)
{
    constexpr std::array names = {"gauge", "counter", "histogram", "info"};
    return names.at(static_cast<std::size_t>(type));
}

/** `names` are separated by commas. */
std::string labelsText(std::string_view names)
{
    std::string text;
    while (!names.empty()) {
        const std::string_view name = names.substr(0, names.find(','));
        text += (text.empty() ? "`" : ", `") + std::string(name) + '`';
        names.remove_prefix(name.size() < names.size() ? name.size() + 1 : name.size());
    }
    return text;
}

std::string tableOf(const std::vector<MetricFamily>& families)
{
    std::vector<Row> rows;
    for (const MetricFamily& family : families)
        rows.push_back({"`" + std::string(family.m_Name) + "`", metricTypeText(family.type()),
                        labelsText(family.m_Label), std::string(family.unit()), std::string(family.m_Help)});
    return table({"Metric", "Type", "Labels", "Unit", "What it is"}, rows);
}

} // namespace

std::map<std::string, std::string> metricTables()
{
    return {{"drives", tableOf(driveMetricFamilies())}, {"service", tableOf(serviceMetricFamilies())}};
}

} // namespace DocsTest
