#include "Journal/Passage.h"

#include "Base/Time.h"

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <optional>
#include <string>

namespace Host::Journal {
namespace {

// Smaller steps change no interval that a reader could notice. Two clocks cannot be read at one instant.
constexpr std::int64_t SMALLEST_STEP = 2000; // milliseconds

/** Whether both moments belong to one boot. Nothing when nobody can tell. */
std::optional<bool> isSameBoot(const Moment& before, const Moment& now)
{
    if (!before.m_Boot.empty() && !now.m_Boot.empty())
        return before.m_Boot == now.m_Boot;
    if (before.m_Uptime && now.m_Uptime && *now.m_Uptime < *before.m_Uptime)
        return false;
    return std::nullopt;
}

/** How far the clock was set, in milliseconds; forward is positive. The moments belong to one boot. */
std::int64_t stepBetween(const Moment& before, const Moment& now)
{
    if (!before.m_Uptime || !now.m_Uptime)
        return 0;
    const auto step =
        static_cast<std::int64_t>((now.m_Time - before.m_Time) - (*now.m_Uptime - *before.m_Uptime));
    return std::abs(step) < SMALLEST_STEP ? 0 : step;
}

void move(std::uint64_t& time, std::int64_t step)
{
    const std::uint64_t moved = time + static_cast<std::uint64_t>(step);
    // An instant before 1970 has no number.
    time = step < 0 && moved > time ? 0 : moved;
}

void move(Figures& figures, std::int64_t step)
{
    for (auto& [counter, figure] : figures)
        move(figure.m_Time, step);
}

void moveTimes(State& state, std::int64_t step)
{
    if (state.m_Time)
        move(*state.m_Time, step);
    move(state.m_BootTime, step);
    for (DriveState& drive : state.m_Drives) {
        for (auto& [kind, remembered] : drive.m_Known)
            move(remembered.m_Time, step);
        for (auto& [kind, time] : drive.m_Told)
            move(time, step);
        move(drive.m_Counters, step);
        move(drive.m_Since, step);
    }
    for (GoneDrive& drive : state.m_Gone) {
        move(drive.m_Counters, step);
        move(drive.m_Time, step);
    }
}

Entry entry(Kind kind, std::string text, std::uint64_t begin, std::uint64_t end)
{
    return {kind, Phase::Change, Severity::Information, std::nullopt, {}, {}, std::move(text), begin, end};
}

std::string stepText(std::int64_t step)
{
    const auto seconds = static_cast<std::uint64_t>(std::abs(step)) / MILLISECONDS_A_SECOND;
    return std::string("The machine's clock was set ") + (step > 0 ? "forward" : "back") + " by " +
           std::to_string(seconds) + " seconds.";
}

} // namespace

void orderTimes(std::vector<Entry>& entries)
{
    for (Entry& entry : entries)
        if (entry.m_Begin)
            entry.m_Begin = std::min(*entry.m_Begin, entry.m_End);
}

std::optional<std::uint64_t> pass(State& state, const Moment& now, std::vector<Entry>& entries)
{
    std::optional<bool> isSame;
    std::optional<std::uint64_t> before;
    if (state.m_Moment) {
        before = state.m_Moment->m_Time;
        isSame = isSameBoot(*state.m_Moment, now);
        if (isSame == false)
            entries.push_back(
                entry(Kind::MachineRestarted, "The machine was restarted.", *before, now.m_Time));
        if (const std::int64_t step = isSame == true ? stepBetween(*state.m_Moment, now) : 0; step != 0) {
            moveTimes(state, step);
            move(*before, step);
            entries.push_back(entry(Kind::ClockStepped, stepText(step), *before, now.m_Time));
        }
    }
    if (isSame != true)
        state.m_BootTime = now.m_Time;
    state.m_Moment = now;
    orderTimes(entries);
    return before ? std::optional(std::min(*before, now.m_Time)) : std::nullopt;
}

} // namespace Host::Journal
