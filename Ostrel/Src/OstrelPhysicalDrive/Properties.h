#pragma once

#include "Records/PhysicalDrive.h"
#include "Records/PropertyBuilder.h"

#include <span>

namespace NAMESPACE_Ostrel {

/** The properties of a physical drive, in the order in which they are shown and written to its row. */
std::span<const CPropertyRow<const CNVMePhysicalDrive>> physicalDrivePropertyTable();

} // namespace NAMESPACE_Ostrel
