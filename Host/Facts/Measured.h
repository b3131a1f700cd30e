#pragma once

#include "Facts/DriveIdentity.h"
#include "Plugins/ObjectStore.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

// Which of the plug-in's values were really measured. The rows are not changed. The texts here tell users how
// far they may rely on them.
namespace Host::Cli {

/** Where the value of a property comes from. */
enum class Basis
{
    Measured,    ///< the drive or the system reported it
    NotRead,     ///< the drive's log with it was never read, so the value is that of a new drive
    NotMeasured, ///< the plug-in shows this value for every drive, or for every drive of this maker
};

/** The text that follows a value that was not measured. */
inline constexpr char NOT_MEASURED[] = " (not measured)";

/** The adapter that `object` is or belongs to. Null when there is none. */
const PI::CObject* adapterOf(const ObjectStore& store, const PI::CObject& object);

/** The path that is used to ask the disk of `adapter`. The plug-in may show a shortened path. */
std::string diskPathOf(const ObjectStore& store, const PI::CObject& adapter);

/**
 * Whether the health log was ever read. `object` is an adapter or its medium. Nothing when the plug-in shows
 * no value from a health log.
 */
std::optional<bool> healthLogRead(const ObjectStore& store, const PI::CObject& object);

/**
 * The logs that the plug-in reads from drives of this maker, but has never got from this drive. The numbers
 * are log identifiers.
 */
std::vector<std::uint8_t> unreadVendorLogs(const ObjectStore& store, const PI::CObject& adapter);

/** Where the value of a property of `object` comes from. */
Basis basisOf(const ObjectStore& store, const PI::CObject& object, const PI::CProperty& property);

/** How the location that the plug-in shows for `adapter` differs from its real location. */
ShownPlace shownPlaceOf(const ObjectStore& store, const PI::CObject& adapter);

/** The sentences to show above the rows of `object`, one or two for each reason. Usually empty. */
std::vector<std::string> caveatsOf(const ObjectStore& store, const PI::CObject& object);

} // namespace Host::Cli
