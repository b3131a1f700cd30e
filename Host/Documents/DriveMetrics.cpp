#include "Documents/DriveMetrics.h"

#include "Base/Time.h"
#include "Facts/EndOfLife.h"
#include "Facts/FactTable.h"
#include "Facts/PageFields.h"
#include "Facts/Verdict.h"

#include <algorithm>
#include <limits>
#include <string>
#include <utility>

namespace Host::Cli {
namespace {

using Log = TLXX::NVME_SMART_HEALTH_INFORMATION_LOG;

/** A drive and the label with its key. */
struct Subject
{
    const Drive& m_Drive;
    std::string m_Label;
};

std::string label(std::string_view name, std::string_view value)
{
    std::string text;
    appendLabel(text, name, value);
    return text;
}

/** Adds a fact as a metric, if it is a number that is known. */
struct FactToMetric
{
    MetricsWriter& m_Writer;
    const FactMetric& m_Metric;
    std::string_view m_Labels;
    std::string_view m_More;

    void operator()(std::uint64_t number) const
    {
        const bool isWhole = m_Metric.m_Divisor == 1 &&
                             number <= std::numeric_limits<std::uint64_t>::max() / m_Metric.m_Factor;
        if (number == UNKNOWN_COUNTER)
            return;
        if (isWhole)
            m_Writer.add(number * m_Metric.m_Factor, m_Labels, m_More);
        else
            (*this)(static_cast<double>(number));
    }
    void operator()(double number) const
    {
        m_Writer.add(number * m_Metric.m_Factor / m_Metric.m_Divisor, m_Labels, m_More);
    }
    void operator()(std::int32_t number) const
    {
        if (m_Metric.m_Divisor == 1)
            m_Writer.add(std::int64_t{number} * m_Metric.m_Factor, m_Labels, m_More);
        else
            (*this)(static_cast<double>(number));
    }
    void operator()(float number) const
    {
        if (m_Metric.m_Factor == 1 && m_Metric.m_Divisor == 1)
            m_Writer.add(number, m_Labels, m_More); // in its own shortest text
        else
            (*this)(static_cast<double>(number));
    }
    void operator()(bool yes) const { m_Writer.add(std::uint64_t{yes}, m_Labels, m_More); }
    template<typename Other>
    void operator()(const Other& /*value*/) const
    {}
};

/** The facts that are metrics of one family. */
struct FactFamily
{
    const MetricFamily* m_Family;
    std::vector<std::pair<const Fact*, std::string>> m_Facts; ///< each with the family's label
};

std::vector<FactFamily> collectFactFamilies()
{
    std::vector<FactFamily> families;
    for (const Fact& fact : facts()) {
        const MetricFamily& family = fact.m_Metric.m_Family;
        if (family.m_Name.empty())
            continue;
        const auto known = std::find_if(families.begin(), families.end(), [&](const FactFamily& each) {
            return each.m_Family->m_Name == family.m_Name;
        });
        FactFamily& place = known != families.end() ? *known : families.emplace_back(FactFamily{&family, {}});
        place.m_Facts.emplace_back(
            &fact, family.m_Label.empty() ? "" : label(family.m_Label, fact.m_Metric.m_LabelValue));
    }
    return families;
}

const std::vector<FactFamily>& factFamilies()
{
    static const std::vector<FactFamily> families = collectFactFamilies();
    return families;
}

void addFacts(MetricsWriter& writer, const FactFamily& family, const Subject& subject)
{
    for (const auto& [fact, own] : family.m_Facts) {
        const FactMetric& metric = fact->m_Metric;
        if (metric.m_Condition == nullptr || metric.m_Condition(subject.m_Drive))
            std::visit(FactToMetric{writer, metric, subject.m_Label, own}, fact->m_Value(subject.m_Drive));
    }
}

// Metrics that are more than one fact each.

void addInfo(MetricsWriter& writer, const Subject& subject)
{
    constexpr std::size_t usualBytes = 200;
    std::string labels;
    labels.reserve(usualBytes);
    for (const Fact& fact : facts()) {
        if (fact.m_InfoLabel == nullptr)
            continue;
        const FactValue value = fact.m_Value(subject.m_Drive);
        if (const auto* text = std::get_if<std::string>(&value)) {
            labels += labels.empty() ? "" : ",";
            appendLabel(labels, fact.m_InfoLabel, *text);
        }
    }
    writer.add(std::uint64_t{1}, subject.m_Label, labels);
}

void addLastRead(MetricsWriter& writer, const Subject& subject)
{
    const std::optional<DriveAnswer>& answer = subject.m_Drive.m_Answer;
    if (answer && answer->m_LastAnswer)
        writer.add(static_cast<double>(*answer->m_LastAnswer) / MILLISECONDS_A_SECOND, subject.m_Label);
}

void addHealth(MetricsWriter& writer, const Subject& subject)
{
    const std::optional<Health>& health = subject.m_Drive.m_Health;
    const Verdict verdict = health && health->m_Code ? verdictOfCode(*health->m_Code) : Verdict::Unknown;
    if (verdict == Verdict::Unknown)
        return;
    constexpr std::pair<Verdict, std::string_view> states[] = {{Verdict::Ok, "state=\"healthy\""},
                                                               {Verdict::Warning, "state=\"degraded\""},
                                                               {Verdict::Critical, "state=\"critical\""}};
    for (const auto& [state, own] : states)
        writer.add(std::uint64_t{state == verdict}, subject.m_Label, own);
}

void addCriticalWarning(MetricsWriter& writer, const Subject& subject)
{
    if (!subject.m_Drive.m_HealthLog)
        return;
    // In the order of the bits.
    constexpr std::string_view bits[] = {
        "bit=\"0\",warning=\"spare\"",         "bit=\"1\",warning=\"temperature\"",
        "bit=\"2\",warning=\"reliability\"",   "bit=\"3\",warning=\"read-only\"",
        "bit=\"4\",warning=\"memory-backup\"", "bit=\"5\",warning=\"persistent-memory\""};
    std::uint64_t warnings = subject.m_Drive.m_HealthLog->CriticalWarning();
    for (const std::string_view own : bits) {
        writer.add(warnings & 1U, subject.m_Label, own);
        warnings >>= 1U;
    }
}

template<auto Field>
void addData(MetricsWriter& writer, const Subject& subject)
{
    constexpr std::uint32_t bytesAUnit = 512'000;
    const FactMetric metric = {{}, {}, bytesAUnit};
    if (const std::optional<std::uint64_t> units = logCounter<Field>(subject.m_Drive))
        FactToMetric{writer, metric, subject.m_Label, {}}(*units);
}

void addRemainingLife(MetricsWriter& writer, const Subject& subject)
{
    constexpr std::uint64_t secondsAnHour = 3600;
    const std::optional<EndOfLife> end = explainEndOfLife(subject.m_Drive);
    if (end && end->m_Limit != EndOfLife::Limit::None && end->m_Limit != EndOfLife::Limit::Beyond)
        writer.add(end->m_RemainingHours * secondsAnHour, subject.m_Label);
}

struct OwnFamily
{
    MetricFamily m_Family;
    void (*m_Add)(MetricsWriter& writer, const Subject& subject);
};

constexpr OwnFamily OWN_FAMILIES[] = {
    {{"ostrel_drive_info", "What identifies the drive", "device,vendor,model,serial,pci_address,firmware"},
     addInfo},
    {{"ostrel_drive_last_read_timestamp_seconds", "When the drive answered last"}, addLastRead},
    {{"ostrel_drive_health", "1 for the state of the drive's health, 0 for the others", "state"}, addHealth},
    {{"ostrel_drive_critical_warning", "Whether the drive raises this warning", "bit,warning"},
     addCriticalWarning},
    {{"ostrel_drive_read_bytes_total", "Data read by the host, in steps of 512,000 bytes"},
     addData<&Log::DataUnitsRead>},
    {{"ostrel_drive_written_bytes_total", "Data written by the host, in steps of 512,000 bytes"},
     addData<&Log::DataUnitsWritten>},
    {{"ostrel_drive_remaining_life_seconds",
      "How long the drive lasts if it is used as up to now; absent above a hundred years"},
     addRemainingLife},
};

} // namespace

void addDriveMetrics(MetricsWriter& writer, const Snapshot& snapshot)
{
    std::vector<Subject> subjects;
    subjects.reserve(snapshot.m_Drives.size());
    for (std::size_t i = 0; i < snapshot.m_Drives.size(); ++i)
        subjects.push_back({snapshot.m_Drives[i], label("drive", snapshot.m_Keys[i])});
    for (const OwnFamily& family : OWN_FAMILIES) {
        writer.begin(family.m_Family);
        for (const Subject& subject : subjects)
            family.m_Add(writer, subject);
    }
    for (const FactFamily& family : factFamilies()) {
        writer.begin(*family.m_Family);
        for (const Subject& subject : subjects)
            addFacts(writer, family, subject);
    }
}

std::vector<MetricFamily> driveMetricFamilies()
{
    std::vector<MetricFamily> families;
    for (const OwnFamily& family : OWN_FAMILIES)
        families.push_back(family.m_Family);
    for (const FactFamily& family : factFamilies())
        families.push_back(*family.m_Family);
    return families;
}

} // namespace Host::Cli
