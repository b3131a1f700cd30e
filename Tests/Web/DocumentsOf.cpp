#include "Base/Platform.h"
#include "Commands/CommandLine.h"
#include "Commands/Session.h"
#include "Documents/Metrics.h"
#include "Documents/StatusPage.h"
#include "Terminal/Terminal.h"

#include <exception>
#include <functional>
#include <map>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using namespace Host::Cli;
using Host::Journal::NumberedEntry;

constexpr std::uint64_t NOW = 1'767'225'600'000; // 2026-01-01

/** Every figure of a service that has run for a while. */
ServiceFigures figures()
{
    ServiceFigures figures;
    figures.m_Started = NOW;
    figures.m_PollInterval = 30'000;
    figures.m_Simulated = true;
    figures.m_ReadErrors = 3;
    figures.m_Entries = {{"does-not-answer", 2}, {"read-only", 1}};
    figures.m_Rounds.add(0.3);
    figures.m_Requests.add(0.002);
    figures.m_ProcessorSeconds = 1.25;
    figures.m_ResidentBytes = 40'000'000;
    figures.m_OpenDescriptors = 17;
    return figures;
}

/** An entry about each drive. */
std::vector<NumberedEntry> entries(const Snapshot& snapshot)
{
    std::vector<NumberedEntry> entries;
    for (const Drive& drive : snapshot.m_Drives) {
        NumberedEntry entry;
        entry.m_Number = entries.size() + 1;
        entry.m_Entry.m_Text = subjectText(drive) + " was added.";
        entry.m_Entry.m_End = NOW;
        entries.push_back(entry);
    }
    return entries;
}

std::string made(const std::string& kind, const Snapshot& snapshot)
{
    const std::map<std::string, std::function<std::string()>> makers = {
        {"text", [&] { return metricsText(snapshot, figures(), MetricsFormat::Text); }},
        {"openmetrics", [&] { return metricsText(snapshot, figures(), MetricsFormat::OpenMetrics); }},
        {"page", [&] { return statusPage(snapshot, figures(), entries(snapshot), NOW); }},
        {"style", [] { return std::string(statusStyle()); }},
    };
    return makers.at(kind)();
}

} // namespace

/**
 * usage: DocumentsOf FLEET text|openmetrics|page|style [TIMES]: prints what the service shows of a simulated
 * fleet. With TIMES it is made so often, for those who measure its cost.
 */
int main(int argc, char** argv)
{
    using namespace Host;
    Platform::StandardOutput results(Platform::Standard::Output);
    Platform::StandardOutput messages(Platform::Standard::Error);
    Platform::divertStandardOutput(Platform::Elsewhere::Nowhere);
    try {
        const std::vector<std::string> words = Platform::commandLine(argc, argv);
        Terminal terminal(results, messages);
        const Options options = parseCommandLine({"ostrel", "list", "--simulate", words.at(1)});
        const Session session(options, terminal);
        const Inventory inventory(session);
        const Snapshot snapshot(inventory.objects(), 1, NOW);
        for (int times = words.size() > 3 ? std::stoi(words[3]) : 1; times > 1; --times)
            (void)made(words.at(2), snapshot);
        results.write(made(words.at(2), snapshot));
        return 0;
    } catch (const std::exception& error) {
        messages.write(std::string(error.what()) + '\n');
        return 1;
    }
}
