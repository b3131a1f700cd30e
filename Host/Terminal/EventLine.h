#pragma once

#include "Facts/DriveEvent.h"
#include "Journal/Entry.h"
#include "Terminal/Screen.h"

#include <cstdint>
#include <string>

namespace Host::Cli {

/** The line that people read, with local time, severity, what happened, and the drive. */
std::string eventLine(const DriveEvent& event, const Screen& screen);

/** Something to tell to the user, from an event or from another source. */
struct Notice
{
    std::uint64_t m_Time = 0;     ///< milliseconds since 1970
    std::uint32_t m_Severity = 0; ///< a severity as events have it
    std::string m_Text;
};

/** The same line for a `notice` about `drive`. `drive` is null when it is not known. */
std::string noticeLine(const Notice& notice, const DriveIdentity* drive, const Screen& screen);

/**
 * The line for an entry of the journal. Its time is that of the look that found it. The line also says since
 * when it may have been so, if that is much longer than the time between two looks.
 */
std::string entryLine(const Journal::Entry& entry, const Screen& screen);

} // namespace Host::Cli
