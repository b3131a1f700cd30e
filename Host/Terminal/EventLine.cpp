#include "Terminal/EventLine.h"

#include "Base/Text.h"
#include "Base/Time.h"

#include <PI/EventCode.h>

namespace Host::Cli {
namespace {

/** What the event's text does not tell yet, in parentheses. */
std::string detailsText(const DriveIdentity& drive, const std::string& text)
{
    std::string details;
    for (const std::string& detail :
         {std::string(shortDeviceName(drive.m_Device)), drive.m_Model, drive.m_Serial})
        if (!detail.empty() && text.find(detail) == std::string::npos)
            details += (details.empty() ? "" : ", ") + detail;
    return details.empty() ? details : " (" + details + ")";
}

Tone toneOf(std::uint32_t severity)
{
    switch (severity) {
    case PI::EVENT_SEVERITY_WARNING:
        return Tone::Warning;
    case PI::EVENT_SEVERITY_ERROR:
        return Tone::Bad;
    default:
        return Tone::Plain;
    }
}

} // namespace

std::string eventLine(const DriveEvent& event, const Screen& screen)
{
    return noticeLine({event.m_Event.m_Time, event.m_Event.m_Severity, eventText(event)},
                      event.m_Drive ? &*event.m_Drive : nullptr, screen);
}

std::string noticeLine(const Notice& notice, const DriveIdentity* drive, const Screen& screen)
{
    constexpr std::size_t column = 13; // the longest severity and a gap
    const std::string severity = severityText(notice.m_Severity);
    const std::string details = drive != nullptr ? detailsText(*drive, notice.m_Text) : std::string();
    return localTimeText(notice.m_Time) + "  " + toned(screen, toneOf(notice.m_Severity), severity) +
           std::string(severity.size() < column ? column - severity.size() : 1, ' ') +
           printable(notice.m_Text + details) + '\n';
}

std::string entryLine(const Journal::Entry& entry, const Screen& screen)
{
    constexpr std::uint64_t usual = 600 * MILLISECONDS_A_SECOND; // no two looks are further apart
    const bool isLong = entry.m_Begin && entry.m_End - *entry.m_Begin > usual;
    const std::string since = isLong ? " It happened after " + localTimeText(*entry.m_Begin) + "." : "";
    return noticeLine({entry.m_End, static_cast<std::uint32_t>(entry.m_Severity), entry.m_Text + since},
                      entry.m_Key.empty() ? nullptr : &entry.m_Drive, screen);
}

} // namespace Host::Cli
