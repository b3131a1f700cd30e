#pragma once

#include "Facts/Drives.h"

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

} // namespace Host::Cli
