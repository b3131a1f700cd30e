#include "Facts/DriveEvent.h"

#include <PI/EventCode.h>
#include <PI/PluginHelper.h>

#include <algorithm>
#include <set>
#include <utility>

namespace Host::Cli {
namespace {

/** The drives whose serial number is in none of `others`. Plug-ins tell drives apart by serial number. */
std::vector<const Drive*> missingFrom(const std::vector<Drive>& others, const std::vector<Drive>& drives)
{
    std::set<std::string> serials;
    for (const Drive& drive : others)
        serials.insert(drive.m_Serial);
    std::vector<const Drive*> missing;
    for (const Drive& drive : drives)
        if (!serials.contains(drive.m_Serial))
            missing.push_back(&drive);
    return missing;
}

/** Gives a drive to each event with this identifier: first by name, then the remaining ones in order. */
void match(std::vector<DriveEvent>& events, std::uint32_t id, std::vector<const Drive*> drives)
{
    std::vector<DriveEvent*> nameless;
    for (DriveEvent& event : events) {
        if (event.m_Event.m_Id != id)
            continue;
        const std::string& name = event.m_Event.SourceText();
        const auto named = std::find_if(drives.begin(), drives.end(), [&](const Drive* drive) {
            return !name.empty() && drive->m_Name == name;
        });
        if (named == drives.end()) {
            nameless.push_back(&event);
            continue;
        }
        event.m_Drive = **named;
        drives.erase(named);
    }
    // With more events than drives, a drive came and went between the looks. Then it is not known which event
    // belongs to which drive.
    if (nameless.size() != drives.size())
        return;
    for (std::size_t i = 0; i < drives.size(); ++i)
        nameless[i]->m_Drive = *drives[i];
}

const Drive* bySource(std::uint64_t source, const std::vector<Drive>& drives)
{
    const auto found = std::find_if(drives.begin(), drives.end(), [source](const Drive& drive) {
        return drive.m_AdapterId == source || drive.m_DriveId == source;
    });
    return found == drives.end() ? nullptr : &*found;
}

/** The event's first placeholder is the drive's name. New adapters may have no name yet. */
std::string subjectOf(const DriveEvent& event)
{
    if (const std::string& name = event.m_Event.PlaceHolder1(); !name.empty())
        return name;
    DriveIdentity unnamed;
    if (event.m_Drive)
        unnamed = *event.m_Drive;
    // The drive's name may have changed since the event was made.
    unnamed.m_Name.clear();
    return subjectText(unnamed);
}

} // namespace

std::vector<DriveEvent> withDrives(std::vector<PI::CEvent> events, const std::vector<Drive>& before,
                                   const std::vector<Drive>& after)
{
    std::vector<DriveEvent> result;
    for (PI::CEvent& event : events) {
        const Drive* drive = bySource(event.m_Source, after);
        if (drive == nullptr)
            drive = bySource(event.m_Source, before);
        result.push_back({std::move(event), drive != nullptr ? std::optional(*drive) : std::nullopt});
    }
    // A plug-in hands over the newest event first. New adapters are in the same order. Events of vanished
    // ones were made from the first adapter on, so their drives must be reversed.
    std::vector<const Drive*> removed = missingFrom(after, before);
    std::reverse(removed.begin(), removed.end());
    match(result, PI::EVENT_ADAPTER_ADDED, missingFrom(before, after));
    match(result, PI::EVENT_ADAPTER_REMOVED, std::move(removed));
    return result;
}

std::string eventText(const DriveEvent& event)
{
    std::string format = PI::PropertyValueToString(event.m_Event.m_Id);
    if (format == std::to_string(event.m_Event.m_Id))
        format = "Event " + format + " of %1";
    std::string text;
    for (std::size_t i = 0; i < format.size(); ++i) {
        const std::string_view place = std::string_view(format).substr(i, 2);
        if (place == "%1")
            text += subjectOf(event);
        else if (place == "%2")
            text += event.m_Event.PlaceHolder2();
        else {
            text += format[i];
            continue;
        }
        ++i;
    }
    return text;
}

std::string severityText(std::uint32_t severity)
{
    switch (severity) {
    case PI::EVENT_SEVERITY_INFORMATION:
        return "Information";
    case PI::EVENT_SEVERITY_WARNING:
        return "Warning";
    case PI::EVENT_SEVERITY_ERROR:
        return "Error";
    default:
        return "Severity " + std::to_string(severity);
    }
}

} // namespace Host::Cli
