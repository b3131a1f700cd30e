#pragma once

#include "Facts/Drives.h"

#include <cstdint>
#include <set>
#include <string>
#include <string_view>
#include <vector>

// Drives that do not answer. Their values are those of their last answer.
namespace Host::Cli {

/** Whether the drive did not answer in the last round. False when nobody knows. */
bool isSilent(const Drive& drive);

/**
 * Whether `answer` is that of a silent drive. A drive that refuses this user is not silent, because it was
 * not asked.
 */
bool isSilent(const DriveAnswer& answer);

/** The instances of the silent drives. */
std::set<std::string> silentInstances(const std::vector<DriveAnswer>& answers);

/** Such as "does not answer since 12:03:07", by local time as seen from `now`; both UTC milliseconds. */
std::string silenceText(const DriveAnswer& answer, std::uint64_t now);

/** The same with the reason, such as ": no answer in time". */
std::string silenceReason(const DriveAnswer& answer, std::uint64_t now);

/** Whether no plug-in shows the drive, because it has never answered, and it goes by `name`. */
bool isUnheard(const Drive& drive, std::string_view name);

/** A sentence about a drive that no plug-in shows, because it has never answered. */
std::string unheardText(const Drive& drive, std::uint64_t now);

/** What an administrator does about it. */
inline constexpr char SILENCE_REMEDY[] =
    "Look at the system's log for messages about the drive; reset or replace it.";

} // namespace Host::Cli
