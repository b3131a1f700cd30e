#pragma once

#include "Records/Adapter.h"
#include "Records/PropertyBuilder.h"

#include <span>

namespace NAMESPACE_Ostrel {

/** The properties of an adapter, in the order in which they are shown and written to its row. */
std::span<const CPropertyRow<CNVMeAdapter>> adapterPropertyTable();

} // namespace NAMESPACE_Ostrel
