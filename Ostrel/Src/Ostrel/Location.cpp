#include "Ostrel/Location.h"

#include "Ostrel/Text.h"

#include <algorithm>

namespace NAMESPACE_Ostrel {

std::string adapterLocation(const CNVMeAdapter& adapter)
{
    if (adapter.m_Segment == 0)
        return formatted("PCI:Bus=%d&Device=%d&Function=%d", adapter.m_Bus, adapter.m_Device,
                         adapter.m_Function);
    return formatted("PCI:Segment=%d&Bus=%d&Device=%d&Function=%d", adapter.m_Segment, adapter.m_Bus,
                     adapter.m_Device, adapter.m_Function);
}

std::string driveLocation(const CNVMeAdapter& adapter)
{
    return adapterLocation(adapter) + "&ID=0";
}

const PI::CAdapterID* findIdentity(const std::vector<PI::CAdapterID>& identities, const CNVMeAdapter& adapter)
{
    const auto identity =
        std::find_if(identities.begin(), identities.end(), [&](const PI::CAdapterID& candidate) {
            return candidate.m_AdapterNumber != PI::CAdapterID::UNASSIGNED &&
                   candidate.m_Segment == static_cast<std::uint32_t>(adapter.m_Segment) &&
                   candidate.m_Bus == static_cast<std::uint32_t>(adapter.m_Bus) &&
                   candidate.m_Device == static_cast<std::uint32_t>(adapter.m_Device) &&
                   candidate.m_Function == static_cast<std::uint32_t>(adapter.m_Function);
        });
    return identity == identities.end() ? nullptr : &*identity;
}

} // namespace NAMESPACE_Ostrel
