#pragma once

#include <cstdint>

namespace NAMESPACE_Ostrel {

/** Codes of the host's vocabulary that the scan decides by and the properties show. */
enum HostCode : std::uint32_t
{
    ADAPTER_HEALTHY = 40024,
    ADAPTER_DEGRADED = 40150,
    STATUS_CRITICAL = 40095, ///< of adapters and of drives

    DRIVE_ONLINE = 40099,
    DRIVE_DEGRADED = 40180,

    REASON_TEMPERATURE = 40459,
    REASON_SPARE = 40460,
    REASON_MEMORY_BACKUP = 40449,
    REASON_RELIABILITY = 40487,
    REASON_READ_ONLY = 40452,

    WEAR_NORMAL = 40252,
    WEAR_WARNING = 40410,
    WEAR_CRITICAL = 40411,

    SPARE_STATE_NORMAL = 40473,
    SPARE_STATE_CRITICAL = 40474,

    FAMILY_KNOWN = 40480,
    FAMILY_OTHER = 40488,

    DRIVE_TYPE_SOLID_STATE = 40200,
};

} // namespace NAMESPACE_Ostrel
