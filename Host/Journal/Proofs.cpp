#include "Journal/Proofs.h"

#include <algorithm>
#include <functional>
#include <optional>
#include <utility>

namespace Host::Journal {
namespace {

constexpr std::uint64_t HOUR = 3'600'000; // milliseconds

struct CounterStep
{
    const CounterRow& m_Row;
    Figure m_Before;
    std::uint64_t m_Now;
};

/** How `counter` changed in the direction of `compare`. Nothing when it did not, or when one is not known. */
template<typename Compare>
std::optional<CounterStep> stepOf(Counter counter, const Cli::ObservedDrive& drive, const Figures& before,
                                  Compare compare)
{
    const CounterRow& row = rowOf(counter);
    const std::optional<std::uint64_t>& now = drive.*row.m_Figure;
    const auto figure = before.find(counter);
    if (!now || figure == before.end() || !compare(*now, figure->second.m_Value))
        return std::nullopt;
    return CounterStep{row, figure->second, *now};
}

std::optional<CounterStep> growth(Counter counter, const Cli::ObservedDrive& drive, const Figures& before)
{
    return stepOf(counter, drive, before, std::greater<>());
}

std::string textOf(const CounterStep& step)
{
    return std::string("the ") + step.m_Row.m_Text + " from " + std::to_string(step.m_Before.m_Value) +
           " to " + std::to_string(step.m_Now);
}

/** All changes in one direction, in one sentence. `begin` becomes the latest reading that they rest on. */
template<typename Compare>
std::string allSteps(const Cli::ObservedDrive& drive, const Figures& before, Compare compare,
                     std::uint64_t& begin)
{
    std::string text;
    for (const CounterRow& row : counterRows())
        if (const auto step = stepOf(row.m_Counter, drive, before, compare)) {
            text += (text.empty() ? "" : ", ") + textOf(*step);
            begin = std::max(begin, step->m_Before.m_Time);
        }
    return text;
}

std::optional<Proof> powerLost(const Cli::ObservedDrive& drive, const Figures& before, std::uint64_t bootTime)
{
    if (const auto step = growth(Counter::UnsafeShutdowns, drive, before))
        return Proof{Kind::PowerLost,
                     "the drive lost its power without notice: it counts " + textOf(*step) + ".",
                     step->m_Before.m_Time};
    const auto step = growth(Counter::PowerCycles, drive, before);
    if (!step || step->m_Before.m_Time < bootTime)
        return std::nullopt;
    return Proof{Kind::PowerLost,
                 "the drive lost its power while the machine was running: it counts " + textOf(*step) + ".",
                 step->m_Before.m_Time};
}

std::optional<Proof> wentBack(const Cli::ObservedDrive& drive, const Figures& before)
{
    std::uint64_t begin = 0;
    const std::string steps = allSteps(drive, before, std::less<>(), begin);
    if (steps.empty())
        return std::nullopt;
    return Proof{Kind::CounterWentBack, "what the drive counts went backwards: " + steps + ".", begin};
}

/** Whether it was powered on for longer than it can have been here. */
bool ranTooLong(const Cli::ObservedDrive& drive, const GoneDrive& gone, const Presence& presence)
{
    const auto hours = growth(Counter::PowerOnHours, drive, gone.m_Counters);
    if (!hours)
        return false;
    // It was also here until the first look without it. A drive counts a begun hour early or late.
    const std::uint64_t unseen =
        gone.m_Time - std::min(gone.m_Time, hours->m_Before.m_Time) + presence.m_Time;
    return hours->m_Now - hours->m_Before.m_Value > unseen / HOUR + 2;
}

/** Its return alone is one power cycle. With work between, another machine must have been there. */
bool workedBetweenCycles(const Cli::ObservedDrive& drive, const GoneDrive& gone, const Presence& presence)
{
    const auto cycles = growth(Counter::PowerCycles, drive, gone.m_Counters);
    return presence.m_IsOneBoot && cycles && cycles->m_Now - cycles->m_Before.m_Value > 1 &&
           (growth(Counter::DataUnitsWritten, drive, gone.m_Counters) ||
            growth(Counter::PowerOnHours, drive, gone.m_Counters));
}

} // namespace

std::vector<Proof> proofs(const Cli::ObservedDrive& drive, const Figures& before, std::uint64_t bootTime)
{
    std::vector<Proof> result;
    for (std::optional<Proof> proof : {powerLost(drive, before, bootTime), wentBack(drive, before)})
        if (proof)
            result.push_back(*std::move(proof));
    return result;
}

std::vector<Proof> proofsOfReturn(const Cli::ObservedDrive& drive, const GoneDrive& gone,
                                  const Presence& presence)
{
    std::vector<Proof> result;
    if (ranTooLong(drive, gone, presence) || workedBetweenCycles(drive, gone, presence)) {
        std::uint64_t begin = 0;
        const std::string steps = allSteps(drive, gone.m_Counters, std::greater<>(), begin);
        result.push_back({Kind::WorkedElsewhere,
                          "the drive worked elsewhere while it was gone: it counts " + steps + ".", begin});
    }
    if (std::optional<Proof> proof = wentBack(drive, gone.m_Counters))
        result.push_back(*std::move(proof));
    return result;
}

bool hasCounters(const Cli::ObservedDrive& drive)
{
    return std::ranges::any_of(counterRows(),
                               [&](const CounterRow& row) { return (drive.*row.m_Figure).has_value(); });
}

void remember(Figures& figures, const Cli::ObservedDrive& drive, std::uint64_t time)
{
    for (const CounterRow& row : counterRows())
        if (const std::optional<std::uint64_t>& figure = drive.*row.m_Figure)
            figures[row.m_Counter] = {*figure, time};
}

} // namespace Host::Journal
