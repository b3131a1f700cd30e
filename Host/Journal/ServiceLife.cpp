#include "Journal/ServiceLife.h"

#include "Journal/Passage.h"

#include <optional>

namespace Host::Journal {

Outcome serviceStarted(const State& before, const Moment& now)
{
    Outcome outcome{{}, before};
    const std::optional<std::uint64_t> begin = pass(outcome.m_State, now, outcome.m_Entries);
    outcome.m_Entries.push_back(
        {Kind::ServiceStarted,
         Phase::Change,
         before.m_Runs ? Severity::Warning : Severity::Information,
         std::nullopt,
         {},
         {},
         before.m_Runs ? "The service started. It had not been ended before." : "The service started.",
         begin,
         now.m_Time});
    outcome.m_State.m_Runs = true;
    return outcome;
}

Outcome serviceEnded(const State& before, const Moment& now)
{
    Outcome outcome{{}, before};
    pass(outcome.m_State, now, outcome.m_Entries);
    outcome.m_Entries.push_back({Kind::ServiceEnded,
                                 Phase::Change,
                                 Severity::Information,
                                 std::nullopt,
                                 {},
                                 {},
                                 "The service ended.",
                                 now.m_Time,
                                 now.m_Time});
    outcome.m_State.m_Runs = false;
    return outcome;
}

} // namespace Host::Journal
