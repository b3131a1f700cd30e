#pragma once

#include <cstdint>

namespace PI {

/** States, types and reasons that properties show. The catalogue has their texts. */
enum _STATE_CODE : std::uint32_t
{
    // Health of adapters, state of drives.
    HEALTH_HEALTHY = 40024,
    HEALTH_CRITICAL = 40095, ///< of adapters and of drives
    DRIVE_OPERATIONAL = 40099,
    HEALTH_DEGRADED = 40150,
    DRIVE_WARNING = 40180,

    DRIVE_TYPE_SSD = 40200,

    WEAR_OK = 40252,
    WEAR_WARNING = 40410,
    WEAR_CRITICAL = 40411,

    SPARE_SUFFICIENT = 40473,
    SPARE_EXHAUSTED = 40474,

    // Whether a model belongs to a known family.
    KNOWN_FAMILY_YES = 40480,
    KNOWN_FAMILY_NO = 40488,

    // Reasons of a health status.
    REASON_MEMORY_BACKUP_FAILED = 40449,
    REASON_READ_ONLY = 40452,
    REASON_TEMPERATURE = 40459,
    REASON_SPARE_LOW = 40460,
    REASON_RELIABILITY_DEGRADED = 40487,
};

/** The codes that the property names as possible reasons. NVMe drives give none of them. */
inline constexpr std::uint32_t FORESEEN_REASONS[] = {40387, 40128, 40393, 40394, 40395, 40396, 40397,
                                                     40398, 40399, 40400, 40401, 40402, 40266};

} // namespace PI
