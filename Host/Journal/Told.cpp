#include "Journal/Told.h"

#include <algorithm>
#include <map>

namespace Host::Journal {
namespace {

/** Plug-ins tell drives apart by serial number, so an event is about all drives with that number. */
bool isAbout(const Cli::DriveIdentity& one, const Cli::DriveIdentity& other)
{
    return one.m_Serial == other.m_Serial &&
           (!one.m_Serial.empty() || one.m_PciAddress == other.m_PciAddress);
}

} // namespace

std::vector<Entry> withoutTold(std::vector<Entry> entries, const std::vector<Cli::DriveEvent>& events)
{
    const auto isTold = [&](const Entry& entry) {
        return std::any_of(events.begin(), events.end(), [&](const Cli::DriveEvent& event) {
            return event.m_Event.m_Id == entry.m_Event && event.m_Drive &&
                   isAbout(*event.m_Drive, entry.m_Drive);
        });
    };
    std::map<std::uint32_t, std::size_t> nameless;
    for (const Cli::DriveEvent& event : events)
        if (!event.m_Drive)
            ++nameless[event.m_Event.m_Id];
    const auto isToldWithoutName = [&](const Entry& entry) {
        const auto left = entry.m_Event ? nameless.find(*entry.m_Event) : nameless.end();
        return left != nameless.end() && left->second > 0 && left->second-- > 0;
    };
    std::erase_if(entries, isTold);
    std::erase_if(entries, isToldWithoutName);
    return entries;
}

} // namespace Host::Journal
