#pragma once

#include "Records/Adapter.h"

#include <PI/AdapterID.h>

#include <cstddef>
#include <cstdint>
#include <unordered_map>
#include <vector>

namespace NAMESPACE_Ostrel {

/**
 * Finds the host's identities by location without a walk over their list. The list must outlive the index and
 * must not change.
 */
class CIdentityIndex
{
public:
    explicit CIdentityIndex(const std::vector<PI::CAdapterID>& identities);

    /** The first identity with the location of `adapter` and a number; null if there is none. */
    const PI::CAdapterID* Find(const CNVMeAdapter& adapter) const;

private:
    struct CLocation
    {
        std::uint32_t m_Segment;
        std::uint32_t m_Bus;
        std::uint32_t m_Device;
        std::uint32_t m_Function;

        friend bool operator==(const CLocation&, const CLocation&) = default;
    };

    struct CHash
    {
        std::size_t operator()(const CLocation& location) const
        {
            // Unique for every PCI Express location: 8 bits for the bus, 5 for the device, 3 for the
            // function.
            return (std::size_t{location.m_Segment} << 32U) ^ (std::size_t{location.m_Bus} << 8U) ^
                   (std::size_t{location.m_Device} << 3U) ^ location.m_Function;
        }
    };

    std::unordered_map<CLocation, const PI::CAdapterID*, CHash> m_Identities;
};

} // namespace NAMESPACE_Ostrel
