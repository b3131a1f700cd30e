#pragma once

#include "Records/Adapter.h"
#include "Records/PropertyBuilder.h"

#include <cstdint>
#include <span>
#include <vector>

namespace NAMESPACE_Ostrel {

/** The properties of an adapter, in the order in which they are shown and written to its row. */
std::span<const CPropertyRow<CNVMeAdapter>> adapterPropertyTable();

/**
 * Fills `properties` with the property `propertyId` of `adapter`, or with all of them; old content goes. Also
 * updates the adapter's end-of-life date. Returns 0.
 */
std::uint32_t getAdapterProperties(CNVMeAdapter& adapter, std::vector<PI::CProperty>& properties,
                                   std::uint32_t propertyId);

} // namespace NAMESPACE_Ostrel
