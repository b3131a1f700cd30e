#pragma once

#include "Journal/State.h"

#include <string>
#include <string_view>

// The texts (JSON) in which the store keeps the parts of a state. What these write, they read back unchanged.
// The readers throw `std::exception` for a text that is none of these.
namespace Host::Journal {

/** All but the drives. */
std::string lookText(const State& state);
State parseLook(std::string_view text);

/** `look` is the time of the last look. A text does not repeat it, so it only changes when the drive does. */
std::string driveText(const DriveState& drive, std::uint64_t look);

/** Whether `driveText` of both is the same. Finding that out costs far less than making a text. */
bool haveSameText(const DriveState& one, std::uint64_t oneLook, const DriveState& other,
                  std::uint64_t otherLook);
DriveState parseDrive(std::string_view text, std::uint64_t look);

std::string goneText(const GoneDrive& drive);
GoneDrive parseGone(std::string_view text);

} // namespace Host::Journal
