#pragma once

#include "Facts/Drives.h"
#include "Terminal/Screen.h"

#include <PI/Event.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace Host::Cli {

/** An event and the drive that it was about, where that is known. */
struct DriveEvent
{
    PI::CEvent m_Event;
    std::optional<Drive> m_Drive;
};

/**
 * Finds the drives of `events` in what there was before and after them. The events of drives that came or
 * went name no object, and a new one may have no name either, so that only the difference tells.
 */
std::vector<DriveEvent> withDrives(std::vector<PI::CEvent> events, const std::vector<Drive>& before,
                                   const std::vector<Drive>& after);

/** What happened, as the catalogue has it. A drive without a name goes by model and serial number. */
std::string eventText(const DriveEvent& event);

/** How bad it is, in a word. */
std::string severityText(std::uint32_t severity);

/** The time of day here of an instant in milliseconds since 1970. */
std::string timeOfDayText(std::uint64_t milliseconds);

/** The line that people read: local time, severity, what happened, and to which drive. */
std::string eventLine(const DriveEvent& event, const Screen& screen);

/** Something to tell, whoever found it out. */
struct Notice
{
    std::uint64_t m_Time = 0;     ///< milliseconds since 1970
    std::uint32_t m_Severity = 0; ///< as events have it
    std::string m_Text;
};

/** The same line for `notice` about `drive`, which is null when nobody knows it. */
std::string noticeLine(const Notice& notice, const DriveIdentity* drive, const Screen& screen);

} // namespace Host::Cli
