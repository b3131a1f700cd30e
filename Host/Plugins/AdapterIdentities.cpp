#include "Plugins/AdapterIdentities.h"

#include <algorithm>
#include <utility>

namespace Host {
namespace {

std::uint32_t registeredNumber(const PI::CAdapterID& location)
{
    PI::CGlobalAdapterID adapter("localhost");
    adapter.SetSegment(static_cast<std::int32_t>(location.m_Segment));
    adapter.SetBus(static_cast<std::int32_t>(location.m_Bus));
    adapter.SetDevice(static_cast<std::int32_t>(location.m_Device));
    adapter.SetFunction(static_cast<std::int32_t>(location.m_Function));
    adapter.GenerateUniqueAdapterNumber();
    return static_cast<std::uint32_t>(adapter.GetGlobalAdapterNumber());
}

} // namespace

std::optional<TLXX::CPciLocation> pciLocation(const PI::CObject& adapter)
{
    TLXX::CPciLocation location;
    for (const auto& [id, part] :
         {std::pair(PI::PROP_PCI_SEGMENT, &location.m_Segment), std::pair(PI::PROP_PCI_BUS, &location.m_Bus),
          std::pair(PI::PROP_PCI_DEVICE, &location.m_Device),
          std::pair(PI::PROP_PCI_FUNCTION, &location.m_Function)}) {
        const PI::CProperty* property = findProperty(adapter, id);
        const auto* number =
            property != nullptr ? std::get_if<std::uint64_t>(&property->GetValue()) : nullptr;
        if (number == nullptr)
            return std::nullopt;
        *part = static_cast<std::int32_t>(*number);
    }
    return location;
}

std::vector<PI::CAdapterID> adapterLocations(const ObjectStore& objects)
{
    std::vector<PI::CAdapterID> locations;
    for (const PI::CObject& object : objects.objects()) {
        if (object.m_Type != PI::TYPE_ADAPTER)
            continue;
        if (const std::optional<TLXX::CPciLocation> location = pciLocation(object))
            locations.push_back({static_cast<std::uint32_t>(location->m_Segment),
                                 static_cast<std::uint32_t>(location->m_Bus),
                                 static_cast<std::uint32_t>(location->m_Device),
                                 static_cast<std::uint32_t>(location->m_Function)});
    }
    return locations;
}

std::vector<PI::CAdapterID> AdapterIdentities::assign(const std::vector<PI::CAdapterID>& locations)
{
    std::vector<PI::CAdapterID> identities;
    for (PI::CAdapterID place : locations) {
        place.m_AdapterNumber = PI::CAdapterID::UNASSIGNED;
        if (std::find(m_Assigned.begin(), m_Assigned.end(), place) != m_Assigned.end())
            continue;
        m_Assigned.push_back(place);
        place.m_AdapterNumber = registeredNumber(place);
        identities.push_back(place);
    }
    return identities;
}

} // namespace Host
