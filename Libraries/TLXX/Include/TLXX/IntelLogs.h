#pragma once

#include <TLXX/Export.h>
#include <TLXX/NvmeStructures.h>

#include <cstdint>

// Vendor logs of Intel drives that decide states.
namespace TLXX {

/** Temperature statistics. */
inline constexpr std::uint8_t INTEL_TEMPERATURE_STATISTIC_LOG_PAGE = 0xC5;
/** Attributes of wear and of failed blocks. */
inline constexpr std::uint8_t INTEL_LEGACY_SMART_LOG_PAGE = 0xCA;

/** How near a drive's temperature is to its critical level. */
enum class ETemperatureMargin : std::uint8_t
{
    Safe,
    NearCritical,
    Critical,
    AboveCritical,
};

/** What the page of temperature statistics says of that. */
TLXX_EXPORT ETemperatureMargin temperatureMargin(const VendorLogPage& statistics);

} // namespace TLXX
