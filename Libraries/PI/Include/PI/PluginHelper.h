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
    /** Gives `property` the identifier, caption, kind, units and attributes of `description`; the value is
     * cleared. */
    static void GenerateCProperty(const _PROPERTY_DESCRIPTION& description, CProperty& property);

    /**
     * Expresses `bytes` in the largest unit in which the value is at least 1 (bytes below 1 KiB). Returns
     * false, with nothing written, for an unknown amount (all ones).
     */
    static bool ConvertBytesToOtherUnit(std::uint64_t bytes, float& value, _UNITS& units);

    /**
     * How long a drive will last if it goes on as it did.
     * `hours` it has run, `bytesWritten` in that time, `wear` in percent of its life (0, 100 and what is
     * above 255 stand for "not known"), `rating` in TiB that it may be given (0 and 1: unrated). All ones is
     * "not known" for each of them; 0 hours tell no rate. The shorter of what writing and wear allow; 0 when
     * a limit has passed, and `UNLIMITED_HOURS` at most. Returns whether there was anything to compute from.
     */
    static bool ComputeRemainingLifeTime(std::uint64_t hours, std::uint64_t bytesWritten, std::uint64_t wear,
                                         std::uint64_t rating, std::uint64_t& remaining);

    /** What `ComputeRemainingLifeTime` gives when nothing wears out; keeps dates at four-digit years. */
    static constexpr std::uint64_t UNLIMITED_HOURS = 24ULL * 365 * 100;
};

/** The catalogue's text of a code (caption, value, unit, icon, event); its decimal number when it has none.
 */
PI_EXPORT std::string PropertyValueToString(std::uint32_t code);

} // namespace PI
