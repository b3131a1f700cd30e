#pragma once

#include <TLXX/Export.h>

#include <cstdint>
#include <string>
#include <vector>

namespace TLXX {

/** Where the machine's controllers sit. */
class TLXX_EXPORT CConfigManager
{
public:
    /**
     * The PCI location of a controller: `number` counts, from 1, the controllers that the last enumeration
     * yielded, in its order. `known` names controllers by vendor and device; the list never adds one.
     * Returns false, with the four values untouched, when there is no such controller or it is not on PCI
     * Express.
     */
    static bool GetLocation(const std::vector<std::string>& known, std::uint32_t number,
                            std::int32_t& segment, std::int32_t& bus, std::int32_t& device,
                            std::int32_t& function);
};

} // namespace TLXX
