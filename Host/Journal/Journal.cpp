#include "Journal/Journal.h"

#include "Journal/DriveMatch.h"
#include "Journal/Passage.h"
#include "Journal/Proofs.h"
#include "Journal/Rules.h"

#include <PI/EventCode.h>

#include <algorithm>
#include <utility>

namespace Host::Journal {
namespace {

template<typename Value>
const Value* find(const DriveState& state, Kind kind)
{
    const auto found = state.m_Known.find(kind);
    return found == state.m_Known.end() ? nullptr : std::get_if<Value>(&found->second.m_Value);
}

/** Compares one drive with its last known state, and updates that state. */
class Comparison
{
public:
    Comparison(const Cli::ObservedDrive& drive, DriveState& state, std::uint64_t time,
               std::vector<Entry>& entries)
        : m_Drive(drive), m_State(state), m_Time(time), m_Entries(entries)
    {}

    void tell(const std::vector<Proof>& proofs)
    {
        for (const Proof& proof : proofs)
            tell(proof.m_Kind, Phase::Change, PROOF_SEVERITY, std::nullopt, proof.m_Text, proof.m_Begin);
    }

    void run()
    {
        for (const ConditionRule& rule : conditionRules())
            compare(rule);
        for (const DegreeRule& rule : degreeRules())
            compare(rule);
        for (const StepRule& rule : stepRules())
            compare(rule);
        for (const FigureRule& rule : figureRules())
            compare(rule);
        for (const TextRule& rule : textRules())
            compare(rule);
        Journal::remember(m_State.m_Counters, m_Drive, m_Time);
    }

private:
    void compare(const ConditionRule& rule)
    {
        const bool* before = find<bool>(m_State, rule.m_Kind);
        const bool held = before != nullptr && *before;
        const std::optional<bool> holds = rule.m_Holds(m_Drive, held);
        if (!holds)
            return;
        if (*holds && !held) {
            const Phase phase = before == nullptr ? Phase::Present : Phase::Began;
            tell(rule.m_Kind, phase, rule.m_Severity, rule.m_Event, rule.m_Text);
        } else if (!*holds && held)
            tell(rule.m_Kind, Phase::Ended, Severity::Information,
                 rule.m_Warning ? eventOfEnd() : std::nullopt, rule.m_EndText);
        remember(rule.m_Kind, *holds);
    }

    /** The plug-in only reports the end of the last warning. */
    std::optional<std::uint32_t> eventOfEnd() const
    {
        return warnsOfNothing(m_Drive) ? std::optional(PI::EVENT_WARNINGS_CLEARED) : std::nullopt;
    }

    void compare(const DegreeRule& rule)
    {
        const auto* before = find<std::uint64_t>(m_State, rule.m_Kind);
        const std::optional<std::uint64_t> degree = rule.m_Degree(m_Drive);
        if (!degree)
            return;
        if (*degree != (before != nullptr ? *before : 0)) {
            if (*degree == 0)
                tell(rule.m_Kind, Phase::Ended, Severity::Information, eventOfEnd(), rule.m_EndText);
            else {
                const Degree& now = rule.m_Degrees[*degree - 1];
                tell(rule.m_Kind, before == nullptr ? Phase::Present : Phase::Began, now.m_Severity,
                     now.m_Event, now.m_Text);
            }
        }
        remember(rule.m_Kind, *degree);
    }

    void compare(const StepRule& rule)
    {
        const std::optional<std::int32_t>& figure = m_Drive.*rule.m_Figure;
        if (!figure)
            return;
        const auto* before = find<std::uint64_t>(m_State, rule.m_Kind);
        const std::uint64_t passed = std::max(rule.passed(*figure), before != nullptr ? *before : 0);
        if (passed > (before != nullptr ? *before : 0) && !holds(rule.m_Unless)) {
            const Severity severity = rule.m_Steps[passed - 1].m_Severity;
            // It is no news that a drive was used a little before it was first seen.
            if (before != nullptr || severity != Severity::Information)
                tell(rule.m_Kind, before == nullptr ? Phase::Present : Phase::Change, severity, std::nullopt,
                     rule.m_Text(*figure));
        }
        remember(rule.m_Kind, passed);
    }

    bool holds(const std::optional<Kind>& condition) const
    {
        const bool* held = condition ? find<bool>(m_State, *condition) : nullptr;
        return held != nullptr && *held;
    }

    void compare(const FigureRule& rule)
    {
        const std::optional<std::uint64_t>& figure = m_Drive.*rule.m_Figure;
        if (!figure)
            return;
        const auto* before = find<std::uint64_t>(m_State, rule.m_Kind);
        const bool isNews = before != nullptr && (rule.m_OnlyGrowth ? *figure > *before : *figure != *before);
        if (isNews && isTooSoon(rule))
            return;
        if (before == nullptr) {
            if (rule.m_PresentText != nullptr && *figure > 0)
                tell(rule.m_Kind, Phase::Present, rule.m_Severity, std::nullopt, rule.m_PresentText(*figure));
        } else if (isNews)
            tell(rule.m_Kind, Phase::Change, rule.m_Severity, rule.m_Event, rule.m_Text(*before, *figure));
        remember(rule.m_Kind, *figure);
    }

    /** Whether such news was told not long ago. If not, it counts as told now. */
    bool isTooSoon(const FigureRule& rule)
    {
        if (rule.m_Pause == 0)
            return false;
        const auto [told, isFirst] = m_State.m_Told.try_emplace(rule.m_Kind, m_Time);
        if (!isFirst && m_Time >= told->second && m_Time - told->second < rule.m_Pause)
            return true;
        told->second = m_Time;
        return false;
    }

    void compare(const TextRule& rule)
    {
        const std::string& text = rule.m_Of(m_Drive);
        if (text.empty())
            return;
        const auto* before = find<std::string>(m_State, rule.m_Kind);
        if (before != nullptr && text != *before)
            tell(rule.m_Kind, Phase::Change, rule.m_Severity, std::nullopt,
                 rule.m_Text + ("from " + *before + " to " + text + "."));
        remember(rule.m_Kind, text);
    }

    void tell(Kind kind, Phase phase, Severity severity, std::optional<std::uint32_t> event,
              const std::string& text)
    {
        const auto known = m_State.m_Known.find(kind);
        tell(kind, phase, severity, event, text,
             known != m_State.m_Known.end() ? std::optional(known->second.m_Time) : std::nullopt);
    }

    void tell(Kind kind, Phase phase, Severity severity, std::optional<std::uint32_t> event,
              const std::string& text, std::optional<std::uint64_t> begin)
    {
        m_Entries.push_back({kind, phase, severity, event, m_Drive.m_Key, m_Drive,
                             Cli::subjectText(m_Drive) + ": " + text, begin, m_Time});
    }

    template<typename Value>
    void remember(Kind kind, Value value)
    {
        m_State.m_Known[kind] = {std::move(value), m_Time};
    }

    const Cli::ObservedDrive& m_Drive;
    DriveState& m_State;
    const std::uint64_t m_Time;
    std::vector<Entry>& m_Entries;
};

Entry added(const Cli::ObservedDrive& drive, std::uint64_t before, std::uint64_t now)
{
    return {Kind::DriveAdded,
            Phase::Change,
            Severity::Information,
            PI::EVENT_ADAPTER_ADDED,
            drive.m_Key,
            drive,
            Cli::subjectText(drive) + " was added.",
            before,
            now};
}

Entry removed(const DriveState& drive, std::uint64_t before, std::uint64_t now)
{
    return {Kind::DriveRemoved,
            Phase::Change,
            Severity::Warning,
            PI::EVENT_ADAPTER_REMOVED,
            drive.m_Key,
            drive.m_Drive,
            Cli::subjectText(drive.m_Drive) + " was removed.",
            before,
            now};
}

/** Takes a drive from the list of those that are gone. */
std::optional<GoneDrive> takeFrom(std::vector<GoneDrive>& gone, const Cli::DriveIdentity& drive)
{
    const auto found = std::find_if(gone.begin(), gone.end(), [&](const GoneDrive& former) {
        return former.m_Drive.m_Serial == drive.m_Serial && former.m_Drive.m_Model == drive.m_Model;
    });
    if (found == gone.end())
        return std::nullopt;
    std::optional<GoneDrive> result = std::move(*found);
    gone.erase(found);
    return result;
}

/** Keeps what is needed when the drive comes back. Drives that share a serial number cannot be told apart. */
void keep(std::vector<GoneDrive>& gone, const DriveState& drive, std::uint64_t time)
{
    constexpr std::size_t most = 256;
    (void)takeFrom(gone, drive.m_Drive);
    if (drive.m_Key != drive.m_Drive.m_Serial || drive.m_Counters.empty())
        return;
    gone.push_back({drive.m_Drive, drive.m_Counters, time});
    if (gone.size() > most)
        gone.erase(gone.begin());
}

/** Tells what the drive's counters prove. A drive that is back may be read for the first time later. */
void tellProofs(Comparison& comparison, const Cli::ObservedDrive& drive, const DriveState& known,
                State& state)
{
    const std::uint64_t time = *state.m_Time;
    if (!known.m_Counters.empty())
        comparison.tell(proofs(drive, known.m_Counters, state.m_BootTime));
    else if (hasCounters(drive) && drive.m_Key == drive.m_Serial)
        if (const std::optional<GoneDrive> gone = takeFrom(state.m_Gone, drive))
            comparison.tell(proofsOfReturn(
                drive, *gone, {time - std::min(time, known.m_Since), known.m_Since >= state.m_BootTime}));
}

} // namespace

Outcome advance(const State& before, const Cli::Observation& now)
{
    Outcome outcome;
    State former = before;
    const std::uint64_t time = now.m_Moment.m_Time;
    (void)pass(former, now.m_Moment, outcome.m_Entries);
    const std::vector<std::optional<std::size_t>> matches = matchDrives(former.m_Drives, now.m_Drives);
    std::vector<bool> present(former.m_Drives.size());
    for (const std::optional<std::size_t>& match : matches)
        if (match)
            present[*match] = true;
    for (std::size_t i = 0; i < present.size(); ++i)
        if (!present[i]) {
            outcome.m_Entries.push_back(removed(former.m_Drives[i], former.m_Time.value_or(0), time));
            keep(former.m_Gone, former.m_Drives[i], time);
        }

    State& state = outcome.m_State;
    state = {time, {}, std::move(former.m_Gone), former.m_Moment, former.m_BootTime, former.m_Runs};
    for (std::size_t i = 0; i < matches.size(); ++i) {
        const Cli::ObservedDrive& drive = now.m_Drives[i];
        DriveState known = matches[i] ? std::move(former.m_Drives[*matches[i]]) : DriveState{};
        if (!matches[i] && former.m_Time) {
            outcome.m_Entries.push_back(added(drive, *former.m_Time, time));
            known.m_Since = *former.m_Time;
        }
        known.m_Key = drive.m_Key;
        known.m_Drive = drive;
        Comparison comparison(drive, known, time, outcome.m_Entries);
        tellProofs(comparison, drive, known, state);
        comparison.run();
        state.m_Drives.push_back(std::move(known));
    }
    orderTimes(outcome.m_Entries);
    return outcome;
}

} // namespace Host::Journal
