#pragma once

#include "Plugins/ObjectStore.h"

#include <PI/AdapterID.h>
#include <TLXX/PciLocation.h>

#include <optional>
#include <vector>

namespace Host {

/** The PCI location of an adapter. Nothing when the plug-in does not show one. */
std::optional<TLXX::CPciLocation> pciLocation(const PI::CObject& adapter);

/**
 * The PCI locations of the adapters in `objects`. Adapters without one are left out. No numbers are assigned.
 */
std::vector<PI::CAdapterID> adapterLocations(const ObjectStore& objects);

/** Hands the numbers of the host's registry to a plug-in that asks for them place by place. */
class AdapterIdentities
{
public:
    /** Returns numbers for those `locations` that have not got one before, in their order. */
    std::vector<PI::CAdapterID> assign(const std::vector<PI::CAdapterID>& locations);

private:
    std::vector<PI::CAdapterID> m_Assigned; ///< the locations, without their numbers
};

} // namespace Host
