#include "Records/Location.h"

namespace NAMESPACE_Ostrel {

TLXX::CPciLocation pciLocation(const CNVMeAdapter& adapter)
{
    return {adapter.m_Segment, adapter.m_Bus, adapter.m_Device, adapter.m_Function};
}

TLXX::CPciLocation pciLocation(const PI::CAdapterID& identity)
{
    return {static_cast<std::int32_t>(identity.m_Segment), static_cast<std::int32_t>(identity.m_Bus),
            static_cast<std::int32_t>(identity.m_Device), static_cast<std::int32_t>(identity.m_Function)};
}

PI::CAdapterID unassignedIdentity(const TLXX::CPciLocation& location)
{
    return {static_cast<std::uint32_t>(location.m_Segment), static_cast<std::uint32_t>(location.m_Bus),
            static_cast<std::uint32_t>(location.m_Device), static_cast<std::uint32_t>(location.m_Function)};
}

std::string adapterLocation(const CNVMeAdapter& adapter)
{
    const std::string segment =
        adapter.m_Segment == 0 ? "" : "Segment=" + std::to_string(adapter.m_Segment) + "&";
    return "PCI:" + segment + "Bus=" + std::to_string(adapter.m_Bus) +
           "&Device=" + std::to_string(adapter.m_Device) + "&Function=" + std::to_string(adapter.m_Function);
}

std::string driveLocation(const std::string& adapterLocation)
{
    return adapterLocation + "&ID=0";
}

} // namespace NAMESPACE_Ostrel
