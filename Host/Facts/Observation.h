#pragma once

#include "Base/Moment.h"
#include "Facts/DriveIdentity.h"

#include <TLXX/IntelLogs.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace Host {
class ObjectStore;
}

namespace Host::Cli {

struct Snapshot;

/** The bits of the critical-warning byte in a drive's health log. */
enum CriticalWarning : std::uint8_t
{
    WARNING_SPARE = 1U << 0U,
    WARNING_TEMPERATURE = 1U << 1U,
    WARNING_RELIABILITY = 1U << 2U,
    WARNING_READ_ONLY = 1U << 3U,
    WARNING_MEMORY_BACKUP = 1U << 4U,
};

/** What is known about one drive at one moment. An absent value is not known, so it causes no entry. */
struct ObservedDrive : DriveIdentity
{
    std::string m_Key; ///< see `driveKeys`
    std::string m_Firmware;
    std::optional<bool> m_Silent; ///< it does not answer
    std::optional<std::uint64_t> m_CapacityMiB;
    std::optional<std::uint64_t> m_BlockSize; ///< bytes
    std::optional<std::uint8_t> m_Warnings;   ///< of `CriticalWarning`
    std::optional<bool> m_BelowNew;           ///< an attribute of its blocks is worse than in a new drive
    std::optional<float> m_Temperature;       ///< degrees Celsius
    /** As the drive's temperature statistics show it. */
    std::optional<TLXX::ETemperatureMargin> m_TemperatureMargin;
    std::optional<float> m_TemperatureLimit;         ///< at this temperature the drive warns
    std::optional<float> m_CriticalTemperatureLimit; ///< at this temperature it may stop
    std::optional<std::uint64_t> m_MediaErrors;
    std::optional<std::int32_t> m_Spare;   ///< percent left
    std::optional<std::int32_t> m_Wear;    ///< percent used; above 100 when the rating is exceeded
    std::optional<std::int32_t> m_OwnWear; ///< the same by the drive's own count, which ends at 255
    // From the health log, as the drive counts during its whole life.
    std::optional<std::uint64_t> m_PowerCycles;
    std::optional<std::uint64_t> m_UnsafeShutdowns;
    std::optional<std::uint64_t> m_PowerOnHours;
    std::optional<std::uint64_t> m_DataUnitsWritten; ///< of 512,000 bytes
    std::optional<std::uint64_t> m_ErrorLogEntries;
};

/** What is known about a machine at one moment. */
struct Observation
{
    Moment m_Moment;
    std::vector<ObservedDrive> m_Drives;
};

/** Reads from the plug-in's objects and from the pages of their drives. The observation is of `moment`. */
Observation observe(const ObjectStore& objects, const Moment& moment);

/** The same from what a snapshot holds, and from the pages of its drives. */
Observation observe(const Snapshot& snapshot, const Moment& moment);

} // namespace Host::Cli
