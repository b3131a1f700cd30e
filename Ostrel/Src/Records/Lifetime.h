#pragma once

#include "Records/Adapter.h"

#include <PI/LifeTimeData.h>

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace NAMESPACE_Ostrel {

/**
 * The bytes of so many data units of the health log. An unknown number of units is an unknown number of
 * bytes; what fits no 64 bits is the highest number that is known.
 */
constexpr std::uint64_t bytesOfDataUnits(std::uint64_t units)
{
    constexpr std::uint64_t BYTES_PER_DATA_UNIT = 512'000;
    constexpr std::uint64_t HIGHEST = UNKNOWN_COUNTER - 1;
    if (units == UNKNOWN_COUNTER)
        return UNKNOWN_COUNTER;
    return units > HIGHEST / BYTES_PER_DATA_UNIT ? HIGHEST : units * BYTES_PER_DATA_UNIT;
}

/** What 100 percent lack of `percent`; 0 for more than 100, as an untrusted drive may claim. */
constexpr std::uint32_t percentLeft(std::uint32_t percent)
{
    return percent < 100 ? 100 - percent : 0;
}

/** The endurance, in TiB, of the first family in `table` that `model` belongs to; 1 when there is none. */
std::uint64_t lifetimeRating(const std::vector<PI::CNVMeLifeTimeData>& table, std::string_view model);

/** The date at which the adapter's drive is worn out if it is used as up to now; empty when nobody knows. */
std::string endOfLifeDate(const CNVMeAdapter& adapter);

} // namespace NAMESPACE_Ostrel
