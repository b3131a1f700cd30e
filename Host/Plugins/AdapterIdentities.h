#pragma once

#include "Plugins/ObjectStore.h"

#include <PI/AdapterID.h>
#include <TLXX/PciLocation.h>

#include <optional>
#include <vector>

namespace Host {

/** Where an adapter sits; none when it does not say. */
std::optional<TLXX::CPciLocation> pciLocation(const PI::CObject& adapter);

/** Where the adapters of `objects` sit; those that do not say are left out. No numbers are assigned. */
std::vector<PI::CAdapterID> adapterLocations(const ObjectStore& objects);

/** Hands the numbers of the host's registry to a plug-in that asks for them place by place. */
class AdapterIdentities
{
public:
    /** Numbers for the places among `locations` that were not assigned one before, in their order. */
    std::vector<PI::CAdapterID> assign(const std::vector<PI::CAdapterID>& locations);

private:
    std::vector<PI::CAdapterID> m_Assigned; ///< as places, without their numbers
};

} // namespace Host
