#include "Documents/Metrics.h"

#include "Base/Time.h"
#include "Documents/DriveMetrics.h"
#include "Documents/MetricsWriter.h"
#include "Journal/Entry.h"

#include <optional>
#include <utility>

namespace Host::Cli {
namespace {

/** What the service knows about itself. */
struct Service
{
    const Snapshot& m_Snapshot;
    const ServiceFigures& m_Figures;
};

double secondsOf(std::uint64_t milliseconds)
{
    return static_cast<double>(milliseconds) / MILLISECONDS_A_SECOND;
}

template<typename Number>
void addKnown(MetricsWriter& writer, const std::optional<Number>& number)
{
    if (number)
        writer.add(*number);
}

template<std::uint64_t ServiceFigures::*Member>
void addSeconds(MetricsWriter& writer, const Service& service)
{
    if (service.m_Figures.*Member > 0)
        writer.add(secondsOf(service.m_Figures.*Member));
}

template<std::string ServiceFigures::*Member>
void addWhetherEmpty(MetricsWriter& writer, const Service& service)
{
    writer.add(std::uint64_t{(service.m_Figures.*Member).empty()});
}

void addLastRound(MetricsWriter& writer, const Service& service)
{
    if (service.m_Snapshot.m_Round > 0)
        writer.add(secondsOf(service.m_Snapshot.m_Time));
}

void addBuild(MetricsWriter& writer, const Service& service)
{
    std::string labels;
    appendLabel(labels, "version", OSTREL_VERSION);
    labels += service.m_Figures.m_Simulated ? ",simulated=\"true\"" : ",simulated=\"false\"";
    writer.add(std::uint64_t{1}, labels);
}

void addEntries(MetricsWriter& writer, const Service& service)
{
    const auto& counts = service.m_Figures.m_Entries;
    // No journal is open yet.
    if (counts.empty())
        return;
    // Who reads the metrics notices the first entry of a kind only if there was a 0 before it.
    for (const std::string_view kind : Journal::kindNames()) {
        std::string labels;
        appendLabel(labels, "kind", kind);
        const auto found = counts.find(std::string(kind));
        writer.add(found != counts.end() ? found->second : 0, labels);
    }
}

struct ServiceFamily
{
    MetricFamily m_Family;
    void (*m_Add)(MetricsWriter& writer, const Service& service);
};

constexpr ServiceFamily FAMILIES[] = {
    {{"ostrel_build_info", "The program, and whether its drives are simulated", "version,simulated"},
     addBuild},
    {{"ostrel_watching", "Whether the drives are watched"}, addWhetherEmpty<&ServiceFigures::m_Trouble>},
    {{"ostrel_poll_interval_seconds", "Time between two rounds of the drives"},
     addSeconds<&ServiceFigures::m_PollInterval>},
    {{"ostrel_scan_timestamp_seconds", "When the last round of the drives ended"}, addLastRound},
    {{"ostrel_scan_duration_seconds", "Durations of the rounds of the drives", {}, true},
     [](MetricsWriter& writer, const Service& service) { writer.add(service.m_Figures.m_Rounds); }},
    {{"ostrel_log_read_errors_total", "Commands to drives that failed or did not come back in time"},
     [](MetricsWriter& writer, const Service& service) { writer.add(service.m_Figures.m_ReadErrors); }},
    {{"ostrel_journal_entries_total", "Entries that the journal has, by kind", "kind"}, addEntries},
    {{"ostrel_journal_writable", "Whether the journal can be written"},
     addWhetherEmpty<&ServiceFigures::m_JournalFailure>},
    {{"ostrel_http_request_duration_seconds", "Durations of the answers over HTTP", {}, true},
     [](MetricsWriter& writer, const Service& service) { writer.add(service.m_Figures.m_Requests); }},
    {{"process_start_time_seconds", "When the service started"}, addSeconds<&ServiceFigures::m_Started>},
    {{"process_cpu_seconds_total", "Processor time of the service"},
     [](MetricsWriter& writer, const Service& service) {
         addKnown(writer, service.m_Figures.m_ProcessorSeconds);
     }},
    {{"process_resident_memory_bytes", "Memory of the service"},
     [](MetricsWriter& writer, const Service& service) {
         addKnown(writer, service.m_Figures.m_ResidentBytes);
     }},
    {{"process_open_fds", "Open file descriptors of the service"},
     [](MetricsWriter& writer, const Service& service) {
         addKnown(writer, service.m_Figures.m_OpenDescriptors);
     }},
};

} // namespace

std::string metricsText(const Snapshot& snapshot, const ServiceFigures& figures, MetricsFormat format)
{
    constexpr std::size_t usualBytes = 12'000;
    constexpr std::size_t usualBytesADrive = 3'500;
    MetricsWriter writer(format, usualBytes + usualBytesADrive * snapshot.m_Drives.size());
    addDriveMetrics(writer, snapshot);
    const Service service{snapshot, figures};
    for (const ServiceFamily& family : FAMILIES) {
        writer.begin(family.m_Family);
        family.m_Add(writer, service);
    }
    return std::move(writer).text();
}

std::vector<MetricFamily> serviceMetricFamilies()
{
    std::vector<MetricFamily> families;
    for (const ServiceFamily& family : FAMILIES)
        families.push_back(family.m_Family);
    return families;
}

} // namespace Host::Cli
