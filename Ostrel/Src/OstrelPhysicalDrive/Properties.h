#pragma once

#include "Records/PhysicalDrive.h"
#include "Records/PropertyBuilder.h"

#include <cstdint>
#include <span>
#include <vector>

namespace NAMESPACE_Ostrel {

/** The properties of a physical drive, in the order in which they are shown and written to its row. */
std::span<const CPropertyRow<const CNVMePhysicalDrive>> physicalDrivePropertyTable();

/**
 * Fills `properties` with the property `propertyId` of `drive`, or with all of them; old content goes.
 * Returns 0.
 */
std::uint32_t getPhysicalDriveProperties(const CNVMePhysicalDrive& drive,
                                         std::vector<PI::CProperty>& properties, std::uint32_t propertyId);

} // namespace NAMESPACE_Ostrel
