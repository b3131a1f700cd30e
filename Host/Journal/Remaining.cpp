#include "Journal/Remaining.h"

#include "Journal/Rules.h"

#include <PI/EventCode.h>

#include <algorithm>

namespace Host::Journal {
namespace {

bool isCleared(const Cli::ObservedDrive& drive, const std::vector<Cli::DriveEvent>& events)
{
    return std::any_of(events.begin(), events.end(), [&](const Cli::DriveEvent& event) {
        return event.m_Event.m_Id == PI::EVENT_WARNINGS_CLEARED && event.m_Drive &&
               event.m_Drive->m_Serial == drive.m_Serial && event.m_Drive->m_PciAddress == drive.m_PciAddress;
    });
}

} // namespace

std::vector<Entry> remaining(const Cli::Observation& now, const std::vector<Cli::DriveEvent>& events,
                             const std::vector<Entry>& entries)
{
    std::vector<Entry> result;
    for (const Cli::ObservedDrive& drive : now.m_Drives) {
        if (!isCleared(drive, events))
            continue;
        for (const ConditionRule& rule : conditionRules()) {
            const bool isTold = std::any_of(entries.begin(), entries.end(), [&](const Entry& entry) {
                return entry.m_Kind == rule.m_Kind && entry.m_Key == drive.m_Key;
            });
            // A temperature just below its limit may still count as over it. It is not told as that here.
            constexpr bool before = false;
            if (!isTold && rule.m_Holds(drive, before).value_or(false))
                result.push_back({rule.m_Kind, Phase::Remains, rule.m_Severity, std::nullopt, drive.m_Key,
                                  drive, Cli::subjectText(drive) + ": this remains: " + rule.m_Text,
                                  std::nullopt, now.m_Moment.m_Time});
        }
    }
    return result;
}

} // namespace Host::Journal
