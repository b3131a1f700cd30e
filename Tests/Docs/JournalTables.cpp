#include "Journal/Journal.h"
#include "Journal/Rules.h"
#include "Journal/ServiceLife.h"
#include "Tables.h"

#include <PI/EventCode.h>

#include <algorithm>
#include <string>
#include <utility>
#include <vector>

namespace DocsTest {
namespace {

using namespace Host::Journal;
using Host::Moment;
using Host::Cli::ObservedDrive;

std::string textOf(Severity severity)
{
    const std::pair<Severity, const char*> names[] = {{Severity::Information, "2 information"},
                                                      {Severity::Warning, "3 warning"},
                                                      {Severity::Error, "4 error"}};
    return std::ranges::find(names, severity, &std::pair<Severity, const char*>::first)->second;
}

std::string named(std::string_view word)
{
    return "`" + std::string(word) + "`";
}

std::string eventText(std::optional<std::uint32_t> event)
{
    return event ? std::to_string(*event) : "";
}

constexpr char COMES[] = "`began`, `present`";

class JournalTable
{
public:
    std::string make()
    {
        addTold(arrivals());
        for (const ConditionRule& rule : conditionRules()) {
            add(rule.m_Kind, COMES, rule.m_Severity, rule.m_Event, rule.m_Text);
            addEnd(rule.m_Kind, rule.m_Warning, rule.m_EndText);
        }
        for (const DegreeRule& rule : degreeRules()) {
            for (const Degree& degree : rule.m_Degrees)
                add(rule.m_Kind, COMES, degree.m_Severity, degree.m_Event, degree.m_Text);
            addEnd(rule.m_Kind, true, rule.m_EndText);
        }
        for (const StepRule& rule : stepRules())
            for (const Step& step : rule.m_Steps)
                add(rule.m_Kind,
                    step.m_Severity == Severity::Information ? "`change`" : "`change`, `present`",
                    step.m_Severity, std::nullopt, rule.m_Text(step.m_Limit));
        for (const FigureRule& rule : figureRules()) {
            add(rule.m_Kind, "`change`", rule.m_Severity, rule.m_Event, rule.m_Text(1, 2));
            if (rule.m_PresentText != nullptr)
                add(rule.m_Kind, "`present`", rule.m_Severity, std::nullopt, rule.m_PresentText(2));
        }
        for (const TextRule& rule : textRules())
            add(rule.m_Kind, "`change`", rule.m_Severity, std::nullopt,
                rule.m_Text + std::string("from A to B."));
        addTold(proven());
        addTold(machine());
        return table({"Kind", "Phase", "Severity", "Event", "Text"}, m_Rows);
    }

private:
    void add(Kind kind, const std::string& phases, Severity severity, std::optional<std::uint32_t> event,
             const std::string& text)
    {
        m_Rows.push_back({named(kindName(kind)), phases, textOf(severity), eventText(event), text});
    }

    void addEnd(Kind kind, bool isWarning, const char* text)
    {
        m_Rows.push_back({named(kindName(kind)), "`ended`", textOf(Severity::Information),
                          isWarning ? eventText(PI::EVENT_WARNINGS_CLEARED) + " for the last warning" : "",
                          text});
    }

    /** Entries that no rule describes, as an example has them. */
    void addTold(const std::vector<Entry>& entries)
    {
        for (const Entry& entry : entries) {
            const std::size_t name = entry.m_Text.find(": ");
            const bool isSentence = name == std::string::npos || !entry.m_Text.starts_with("DRIVE: ");
            add(entry.m_Kind, named(phaseName(entry.m_Phase)), entry.m_Severity, entry.m_Event,
                isSentence ? entry.m_Text : entry.m_Text.substr(name + 2));
        }
    }

    static ObservedDrive drive()
    {
        ObservedDrive result;
        result.m_Name = "DRIVE";
        result.m_Key = result.m_Serial = "S";
        result.m_PowerCycles = 10;
        result.m_UnsafeShutdowns = 2;
        result.m_PowerOnHours = 100;
        return result;
    }

    static std::vector<Entry> arrivals()
    {
        const State none = advance({}, {{1, 1, "boot"}, {}}).m_State;
        const Outcome added = advance(none, {{2, 2, "boot"}, {drive()}});
        std::vector<Entry> entries = added.m_Entries;
        const Outcome removed = advance(added.m_State, {{3, 3, "boot"}, {}});
        entries.insert(entries.end(), removed.m_Entries.begin(), removed.m_Entries.end());
        return entries;
    }

    /** What the news of a drive is that is seen with the counters of `second` after those of `drive`. */
    static std::vector<Entry> between(const ObservedDrive& second, bool wasGone)
    {
        State state = advance({}, {{1, 1, "boot"}, {drive()}}).m_State;
        if (wasGone)
            state = advance(state, {{2, 2, "boot"}, {}}).m_State;
        std::vector<Entry> entries = advance(state, {{3, 3, "boot"}, {second}}).m_Entries;
        std::erase_if(entries, [](const Entry& entry) { return entry.m_Kind == Kind::DriveAdded; });
        return entries;
    }

    static std::vector<Entry> proven()
    {
        ObservedDrive unsafe = drive();
        unsafe.m_UnsafeShutdowns = 3;
        ObservedDrive cycled = drive();
        cycled.m_PowerCycles = 11;
        ObservedDrive older = drive();
        older.m_PowerOnHours = 50;
        ObservedDrive worked = drive();
        worked.m_PowerOnHours = 200;
        std::vector<Entry> entries;
        for (const auto& [second, wasGone] : {std::pair(unsafe, false), std::pair(cycled, false),
                                              std::pair(older, false), std::pair(worked, true)})
            for (const Entry& entry : between(second, wasGone))
                entries.push_back(entry);
        return entries;
    }

    static std::vector<Entry> machine()
    {
        const Outcome started = serviceStarted({}, {1, 1, "boot"});
        std::vector<Entry> entries = serviceStarted(started.m_State, {3'600'001, 1, "boot"}).m_Entries;
        for (const Outcome& outcome :
             {serviceStarted({{}, {}, {}, Moment{1, 1, "other"}, 0, false}, {2, 2, "boot"}),
              serviceEnded(started.m_State, {2, 2, "boot"})})
            entries.insert(entries.end(), outcome.m_Entries.begin(), outcome.m_Entries.end());
        return entries;
    }

    std::vector<Row> m_Rows;
};

} // namespace

std::string journalTable()
{
    return JournalTable().make();
}

} // namespace DocsTest
