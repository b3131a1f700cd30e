#pragma once

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

/** The bits of the critical-warning byte in a drive's health log. */
enum CriticalWarning : std::uint8_t
{
    WARNING_SPARE = 1U << 0U,
    WARNING_TEMPERATURE = 1U << 1U,
    WARNING_RELIABILITY = 1U << 2U,
    WARNING_READ_ONLY = 1U << 3U,
    WARNING_MEMORY_BACKUP = 1U << 4U,
};

/** What is known of one drive at one look. Absent: not known, so that nothing follows from it. */
struct ObservedDrive : DriveIdentity
{
    std::string m_Key; ///< see `driveKeys`
    std::string m_Firmware;
    std::optional<std::uint64_t> m_CapacityMiB;
    std::optional<std::uint64_t> m_BlockSize; ///< bytes
    std::optional<std::uint8_t> m_Warnings;   ///< of `CriticalWarning`
    std::optional<bool> m_BelowNew;           ///< an attribute of its blocks is worse than in a new one
    std::optional<float> m_Temperature;       ///< degrees Celsius
    /** As the drive's temperature statistics tell it. */
    std::optional<TLXX::ETemperatureMargin> m_TemperatureMargin;
    std::optional<float> m_TemperatureLimit;         ///< from which on the drive calls itself too hot
    std::optional<float> m_CriticalTemperatureLimit; ///< from which on it may stop
    std::optional<std::uint64_t> m_MediaErrors;
    std::optional<std::int32_t> m_Spare; ///< percent left
    std::optional<std::int32_t> m_Wear;  ///< percent used; above 100 past the rating
};

/** What is known of a machine at one look. */
struct Observation
{
    std::uint64_t m_Time = 0; ///< milliseconds since 1970
    std::vector<ObservedDrive> m_Drives;
};

/** What a plug-in's objects tell, and what their drives' own pages do, at `time`. */
Observation observe(const ObjectStore& objects, std::uint64_t time);

} // namespace Host::Cli
