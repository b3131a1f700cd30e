#pragma once

#include "Facts/DriveIdentity.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>

namespace Host::Journal {

/** What an entry is about. */
enum class Kind : std::uint8_t
{
    // A drive came or went.
    DriveAdded,
    DriveRemoved,
    // Conditions that hold for some time.
    DoesNotAnswer,
    SpareLow,
    OverTemperature,
    OverCriticalTemperature,
    ReliabilityDegraded,
    ReadOnly,
    MemoryBackupFailed,
    TemperatureMargin,
    BelowNew,
    // Figures that passed a step. Each step is told once.
    SpareFell,
    WearGrew,
    OwnWearGrew, ///< by the drive's own count
                 // Figures and texts that changed.
    MediaErrorsGrew,
    ErrorLogGrew,
    FirmwareChanged,
    CapacityChanged,
    BlockSizeChanged,
    Moved,
    // What a drive's counters prove.
    PowerLost,
    CounterWentBack,
    WorkedElsewhere,
    // News without a drive.
    ClockStepped,
    MachineRestarted,
    ServiceStarted,
    ServiceEnded, ///< the last kind
};

/** The words for all kinds, in the order of the kinds. */
std::span<const std::string_view> kindNames();

/** The word for the kind in documents, such as "read-only". */
std::string_view kindName(Kind kind);

/** The kind with this word. Nothing when there is none. */
std::optional<Kind> kindByName(std::string_view word);

/** What happened to the subject of an entry. */
enum class Phase : std::uint8_t
{
    Change,  ///< it happened
    Present, ///< it was already so when the drive was first seen
    Began,   ///< it began
    Ended,   ///< it ended
    Remains, ///< it is still so, although an event says that all warnings have cleared
};

/** The word for the phase in documents, such as "began". */
std::string_view phaseName(Phase phase);

/** The phase with this word. Nothing when there is none. */
std::optional<Phase> phaseByName(std::string_view word);

/** The numbers are the severities of the plug-in's events. */
enum class Severity : std::uint32_t
{
    Information = 2,
    Warning = 3,
    Error = 4,
};

/** One piece of news about one drive, or about the service and its machine. */
struct Entry
{
    Kind m_Kind = Kind::DriveAdded;
    Phase m_Phase = Phase::Change;
    Severity m_Severity = Severity::Information;
    std::optional<std::uint32_t> m_Event; ///< the plug-in's event for the same news
    std::string m_Key;                    ///< the drive's; empty: it is not about a drive
    Cli::DriveIdentity m_Drive;
    std::string m_Text; ///< a sentence that begins with the drive's name, if it is about one
    // It happened between these two looks, in milliseconds since 1970. Without a begin there was no earlier
    // look.
    std::optional<std::uint64_t> m_Begin;
    std::uint64_t m_End = 0;

    friend bool operator==(const Entry&, const Entry&) = default;
};

} // namespace Host::Journal
