#pragma once

#include "Records/Adapter.h"

#include <PI/AdapterID.h>
#include <TLXX/PciLocation.h>

#include <string>

namespace NAMESPACE_Ostrel {

/** Where the controller of `adapter` sits. */
TLXX::CPciLocation pciLocation(const CNVMeAdapter& adapter);

/** The place that the host's identity is for. */
TLXX::CPciLocation pciLocation(const PI::CAdapterID& identity);

/** The identity of an adapter at `location` that has no number yet. */
PI::CAdapterID unassignedIdentity(const TLXX::CPciLocation& location);

/** The location text of the controller where `adapter` sits. */
std::string adapterLocation(const CNVMeAdapter& adapter);

/** The location text of the one disk of the adapter with this location text. */
std::string driveLocation(const std::string& adapterLocation);

} // namespace NAMESPACE_Ostrel
