#pragma once

#include "Ostrel/PropertyBuilder.h"
#include "OstrelPhysicalDrive/Record.h"

#include <span>

namespace NAMESPACE_Ostrel {

/** The properties of a physical drive, in the order in which they are shown and written to its row. */
std::span<const CPropertyRow<const CNVMePhysicalDrive>> physicalDrivePropertyTable();

} // namespace NAMESPACE_Ostrel
