#pragma once

#include "Records/Adapter.h"

#include <PI/LifeTimeData.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace NAMESPACE_Ostrel {

/**
 * The bytes in a number of data units of the health log. For an unknown number the bytes are unknown, too. A
 * result that does not fit 64 bits becomes the highest known number.
 */
constexpr std::uint64_t bytesOfDataUnits(std::uint64_t units)
{
    constexpr std::uint64_t BYTES_PER_DATA_UNIT = 512'000;
    constexpr std::uint64_t HIGHEST = UNKNOWN_COUNTER - 1;
    if (units == UNKNOWN_COUNTER)
        return UNKNOWN_COUNTER;
    return units > HIGHEST / BYTES_PER_DATA_UNIT ? HIGHEST : units * BYTES_PER_DATA_UNIT;
}

/** 100 minus `percent`; 0 for more than 100, which a faulty drive may report. */
constexpr std::uint32_t percentLeft(std::uint32_t percent)
{
    return percent < 100 ? 100 - percent : 0;
}

/** The endurance, in TiB, of the first family in `table` that `model` belongs to; 1 when there is none. */
std::uint64_t lifetimeRating(const std::vector<PI::CNVMeLifeTimeData>& table, std::string_view model);

/** The date at which the adapter's drive is worn out at its past rate of use; empty when it is unknown. */
std::string endOfLifeDate(const CNVMeAdapter& adapter);

} // namespace NAMESPACE_Ostrel
