#pragma once

#include <PI/Export.h>
#include <PI/Property.h>

#include <cstdint>
#include <string>

namespace PI {

/** What every plug-in needs when it builds properties. */
class PI_EXPORT CPluginHelper
{
public:
    /**
     * Gives `property` the identifier, caption, kind, units and attributes of `description` and clears the
     * value.
     */
    static void GenerateCProperty(const _PROPERTY_DESCRIPTION& description, CProperty& property);

    /**
     * Expresses `bytes` in the largest unit in which the value is at least 1; below 1 KiB in bytes. Returns
     * false and writes nothing for an unknown amount (all ones).
     */
    static bool ConvertBytesToOtherUnit(std::uint64_t bytes, float& value, _UNITS& units);

    /**
     * Computes how long a drive will last at its past rate of use. `hours` is its running time,
     * `bytesWritten` what was written in that time. `wear` is in percent of its life; 0, 100 and values above
     * 255 mean "not known". `rating` is in TiB; 0 and 1 mean unrated. All ones means "not known" for each of
     * them, and 0 hours give no rate. The result is the shorter of what writing and wear allow: 0 after a
     * limit has passed, `UNLIMITED_HOURS` at most. Returns whether there was anything to compute from.
     */
    static bool ComputeRemainingLifeTime(std::uint64_t hours, std::uint64_t bytesWritten, std::uint64_t wear,
                                         std::uint64_t rating, std::uint64_t& remaining);

    /**
     * The result of `ComputeRemainingLifeTime` when nothing wears out. It keeps dates at four-digit years.
     */
    static constexpr std::uint64_t UNLIMITED_HOURS = 24ULL * 365 * 100;
};

/** The catalogue's text of a code (caption, value, unit, icon, event); its decimal number when it has none.
 */
PI_EXPORT std::string PropertyValueToString(std::uint32_t code);

} // namespace PI
