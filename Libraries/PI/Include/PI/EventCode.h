#pragma once

#include <cstdint>

namespace PI {

/** The source of an event whose object is not in the topology: not yet, or no longer. */
inline constexpr std::uint64_t EVENT_SOURCE_HOST = 19002;

/** What happened. The catalogue has the texts. */
enum _EVENT_CODE : std::uint32_t
{
    EVENT_MEMORY_BACKUP_FAILED = 10957,
    EVENT_TEMPERATURE_CRITICAL = 10959,
    EVENT_TEMPERATURE_ABOVE_CRITICAL = 10960,
    EVENT_TEMPERATURE_HIGH = 10962,
    EVENT_TEMPERATURE_NEAR_CRITICAL = 10967,
    EVENT_SPARE_LOW = 10968,
    EVENT_WARNINGS_CLEARED = 10980,
    EVENT_DRIVE_CHANGED = 10985,
    EVENT_RELIABILITY_DEGRADED = 11088,
    EVENT_ADAPTER_ADDED = 11093,
    EVENT_ADAPTER_REMOVED = 11094,
};

/** How serious it is. */
enum _EVENT_SEVERITY : std::uint32_t
{
    EVENT_SEVERITY_INFORMATION = 2,
    EVENT_SEVERITY_WARNING = 3,
    EVENT_SEVERITY_ERROR = 4,
};

} // namespace PI
