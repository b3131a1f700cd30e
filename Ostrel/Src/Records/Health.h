#pragma once

#include "Records/Adapter.h"

#include <TLXX/NvmeStructures.h>

#include <cstdint>

namespace NAMESPACE_Ostrel {

/**
 * The warning bits from the temperature statistics of an Intel drive (vendor log 0xC5), which are added to
 * the drive's own.
 */
std::uint32_t temperatureWarnings(const TLXX::VendorLogPage& statistics);

/**
 * Derives the adapter's status and its reasons from its warning flags and its drive's critical-warning byte.
 */
void applyCriticalWarning(CNVMeAdapter& adapter, std::uint8_t criticalWarning);

/** Stores the normalized wear (0xAD) and spare (0xEA) values of an Intel drive (vendor log 0xCA). */
void applyWear(CNVMeAdapter& adapter, std::uint32_t adNormalized, std::uint32_t eaNormalized,
               std::uint8_t criticalWarning);

} // namespace NAMESPACE_Ostrel
