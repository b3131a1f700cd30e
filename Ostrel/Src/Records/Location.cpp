#include "Records/Location.h"

#include "Records/Text.h"

namespace NAMESPACE_Ostrel {

std::string adapterLocation(const CNVMeAdapter& adapter)
{
    if (adapter.m_Segment == 0)
        return formatted("PCI:Bus=%d&Device=%d&Function=%d", adapter.m_Bus, adapter.m_Device,
                         adapter.m_Function);
    return formatted("PCI:Segment=%d&Bus=%d&Device=%d&Function=%d", adapter.m_Segment, adapter.m_Bus,
                     adapter.m_Device, adapter.m_Function);
}

std::string driveLocation(const std::string& adapterLocation)
{
    return adapterLocation + "&ID=0";
}

} // namespace NAMESPACE_Ostrel
