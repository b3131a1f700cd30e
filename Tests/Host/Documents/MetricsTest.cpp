#include "Documents/Metrics.h"

#include "Journal/Entry.h"

#include <gmock/gmock.h>

#include <regex>
#include <set>

namespace {

using namespace Host::Cli;
using Host::Journal::Kind;
using Host::Journal::kindName;
using testing::HasSubstr;
using testing::Not;

Snapshot emptyAfter(std::uint64_t round)
{
    return Snapshot(Host::ObjectStore({}), round, 1'767'225'600'500);
}

std::string serviceText(const Snapshot& snapshot, const ServiceFigures& figures)
{
    return metricsText(snapshot, figures, MetricsFormat::Text);
}

/** Every figure of a service that runs. */
ServiceFigures busy()
{
    ServiceFigures figures;
    figures.m_Started = 1'767'225'600'007;
    figures.m_PollInterval = 30'500;
    figures.m_Simulated = true;
    figures.m_ReadErrors = 3;
    figures.m_Entries = {{"does-not-answer", 2}, {"read-only", 1}};
    figures.m_Rounds.add(0.3);
    figures.m_Requests.add(0.002);
    figures.m_Requests.add(0.002);
    figures.m_ProcessorSeconds = 1.25;
    figures.m_ResidentBytes = 40'000'000;
    figures.m_OpenDescriptors = 17;
    return figures;
}

TEST(Metrics, ShowTheServiceItself)
{
    const std::string text =
        std::regex_replace(serviceText(emptyAfter(7), busy()),
                           std::regex("#.*\n|.*_bucket.*\n|.*_entries_.* 0\n|version=\"[0-9.]+\""), "");
    EXPECT_EQ(text, "ostrel_build_info{,simulated=\"true\"} 1\n"
                    "ostrel_watching 1\n"
                    "ostrel_poll_interval_seconds 30.5\n"
                    "ostrel_scan_timestamp_seconds 1767225600.5\n"
                    "ostrel_scan_duration_seconds_sum 0.3\n"
                    "ostrel_scan_duration_seconds_count 1\n"
                    "ostrel_log_read_errors_total 3\n"
                    "ostrel_journal_entries_total{kind=\"does-not-answer\"} 2\n"
                    "ostrel_journal_entries_total{kind=\"read-only\"} 1\n"
                    "ostrel_journal_writable 1\n"
                    "ostrel_http_request_duration_seconds_sum 0.004\n"
                    "ostrel_http_request_duration_seconds_count 2\n"
                    "process_start_time_seconds 1767225600.007\n"
                    "process_cpu_seconds_total 1.25\n"
                    "process_resident_memory_bytes 40000000\n"
                    "process_open_fds 17\n");
}

TEST(Metrics, CountTheEntriesOfEachKindFromTheStart)
{
    const std::string text = serviceText(emptyAfter(1), busy());
    EXPECT_THAT(text, HasSubstr("# HELP ostrel_journal_entries_total Entries that the journal has, by kind"));
    for (int kind = 0; kind <= static_cast<int>(Kind::ServiceEnded); ++kind) {
        const auto word = kindName(static_cast<Kind>(kind));
        const std::uint64_t count = kindName(Kind::DoesNotAnswer) == word ? 2
                                    : kindName(Kind::ReadOnly) == word    ? 1
                                                                          : 0;
        EXPECT_THAT(text, HasSubstr("\nostrel_journal_entries_total{kind=\"" + std::string(word) + "\"} " +
                                    std::to_string(count) + "\n"));
    }
}

TEST(Metrics, LeaveOutWhatTheServiceDoesNotKnow)
{
    const std::string text = serviceText(emptyAfter(0), {});
    for (const char* name : {"poll_interval", "scan_timestamp", "journal_entries", "process_"})
        EXPECT_THAT(text, Not(HasSubstr(name)));
    EXPECT_THAT(text, HasSubstr("simulated=\"false\"} 1\n"));
}

TEST(Metrics, TellOfAServiceInTrouble)
{
    ServiceFigures figures;
    figures.m_Trouble = "no plug-in";
    EXPECT_THAT(serviceText(emptyAfter(1), figures), HasSubstr("\nostrel_watching 0\n"));
    EXPECT_THAT(serviceText(emptyAfter(1), figures), HasSubstr("\nostrel_journal_writable 1\n"));
    figures = {};
    figures.m_JournalFailure = "disk full";
    EXPECT_THAT(serviceText(emptyAfter(1), figures), HasSubstr("\nostrel_journal_writable 0\n"));
    EXPECT_THAT(serviceText(emptyAfter(1), figures), HasSubstr("\nostrel_watching 1\n"));
}

TEST(Metrics, EachFamilyOfTheServiceIsThereOnce)
{
    const std::string text = "\n" + serviceText(emptyAfter(1), busy());
    std::set<std::string_view> names;
    for (const MetricFamily& family : serviceMetricFamilies()) {
        EXPECT_TRUE(names.insert(family.m_Name).second) << family.m_Name;
        const std::string head = "\n# TYPE " + std::string(family.m_Name) + ' ';
        EXPECT_NE(text.find(head), std::string::npos) << head;
        EXPECT_EQ(text.find(head), text.rfind(head)) << head;
    }
}

TEST(Metrics, EndAsOpenMetricsDo)
{
    EXPECT_THAT(metricsText(emptyAfter(1), busy(), MetricsFormat::OpenMetrics),
                testing::EndsWith("\n# EOF\n"));
}

} // namespace
