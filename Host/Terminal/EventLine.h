#pragma once

#include "Facts/DriveEvent.h"
#include "Terminal/Screen.h"

#include <cstdint>
#include <string>

namespace Host::Cli {

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
