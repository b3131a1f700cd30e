#pragma once

#include "Facts/Drives.h"

#include <PI/Event.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace Host::Cli {

/** An event and its drive, if the drive is known. */
struct DriveEvent
{
    PI::CEvent m_Event;
    std::optional<Drive> m_Drive;
};

/**
 * Finds the drive of each event by comparing the drives before and after the events. This is needed because
 * an event of a drive that came or went names no object. A new drive may also have no name yet.
 */
std::vector<DriveEvent> withDrives(std::vector<PI::CEvent> events, const std::vector<Drive>& before,
                                   const std::vector<Drive>& after);

/**
 * What happened, in the words of the catalogue. A drive without a name is called by model and serial number.
 */
std::string eventText(const DriveEvent& event);

/** The severity in one word. */
std::string severityText(std::uint32_t severity);

} // namespace Host::Cli
