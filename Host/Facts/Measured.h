#pragma once

#include "Facts/DriveIdentity.h"
#include "Plugins/ObjectStore.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

// How much of what a plug-in shows has really been looked at. Its rows stay as they are; whoever shows them
// says what they are worth.
namespace Host::Cli {

/** Where the value of a property comes from. */
enum class Basis
{
    Measured,    ///< the drive or the system told it
    NotRead,     ///< the drive's log with it was never read, and the value is that of a new drive
    NotMeasured, ///< the plug-in shows the same value for every drive, or every drive of this maker
};

/** What follows a value that is not measured. */
inline constexpr char NOT_MEASURED[] = " (not measured)";

/** The adapter that `object` is or belongs to; null when there is none. */
const PI::CObject* adapterOf(const ObjectStore& store, const PI::CObject& object);

/** The path at which the disk of `adapter` is asked. Plug-ins may shorten the path that they show. */
std::string diskPathOf(const ObjectStore& store, const PI::CObject& adapter);

/**
 * Whether the health log of the drive of `object`, an adapter or its medium, was ever read. None when the
 * plug-in shows nothing that comes from such a log.
 */
std::optional<bool> healthLogRead(const ObjectStore& store, const PI::CObject& object);

/** The basis of a property of `object`. */
Basis basisOf(const ObjectStore& store, const PI::CObject& object, const PI::CProperty& property);

/** How the location that is shown for `adapter` relates to where the adapter is. */
ShownPlace shownPlaceOf(const ObjectStore& store, const PI::CObject& adapter);

/** What to say above the rows of `object`, a sentence or two for each reason; mostly nothing. */
std::vector<std::string> caveatsOf(const ObjectStore& store, const PI::CObject& object);

} // namespace Host::Cli
