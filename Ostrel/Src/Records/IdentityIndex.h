#pragma once

#include "Records/Adapter.h"

#include <PI/AdapterID.h>
#include <TLXX/PciLocation.h>

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
    struct CHash
    {
        std::size_t operator()(const TLXX::CPciLocation& location) const
        {
            // Different for every location that PCI Express has: 8 bits a bus, 5 a device, 3 a function.
            return (static_cast<std::size_t>(location.m_Segment) << 32U) ^
                   (static_cast<std::size_t>(location.m_Bus) << 8U) ^
                   (static_cast<std::size_t>(location.m_Device) << 3U) ^
                   static_cast<std::size_t>(location.m_Function);
        }
    };

    std::unordered_map<TLXX::CPciLocation, const PI::CAdapterID*, CHash> m_Identities;
};

} // namespace NAMESPACE_Ostrel
