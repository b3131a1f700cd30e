#pragma once

#include "Facts/DriveIdentity.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace Host::Journal {

/** What an entry is about. */
enum class Kind : std::uint8_t
{
    // Drives come and go.
    DriveAdded,
    DriveRemoved,
    // Conditions: they hold for some time.
    SpareLow,
    OverTemperature,
    OverCriticalTemperature,
    ReliabilityDegraded,
    ReadOnly,
    MemoryBackupFailed,
    TemperatureMargin,
    BelowNew,
    // Figures that pass a step, once each.
    SpareFell,
    WearGrew,
    // Figures and texts that become others.
    MediaErrorsGrew,
    FirmwareChanged,
    CapacityChanged,
    BlockSizeChanged,
    Moved,
};

/** The word for it in documents, such as "read-only". */
std::string_view kindName(Kind kind);

/** How what an entry is about stands in time. */
enum class Phase : std::uint8_t
{
    Change,  ///< it happened
    Present, ///< it was there when the drive was seen first
    Began,   ///< it holds from now on
    Ended,   ///< it no longer holds
};

/** The word for it in documents, such as "began". */
std::string_view phaseName(Phase phase);

/** How bad it is; the numbers are those of the plug-in's events. */
enum class Severity : std::uint32_t
{
    Information = 2,
    Warning = 3,
    Error = 4,
};

/** One thing to tell about one drive. */
struct Entry
{
    Kind m_Kind = Kind::DriveAdded;
    Phase m_Phase = Phase::Change;
    Severity m_Severity = Severity::Information;
    std::optional<std::uint32_t> m_Event; ///< the number of the plug-in's event that tells the same
    std::string m_Key;                    ///< the drive's
    Cli::DriveIdentity m_Drive;
    std::string m_Text; ///< a sentence that names the drive
    // It happened between these two looks, in milliseconds since 1970. No begin: there was no look before.
    std::optional<std::uint64_t> m_Begin;
    std::uint64_t m_End = 0;

    friend bool operator==(const Entry&, const Entry&) = default;
};

} // namespace Host::Journal
