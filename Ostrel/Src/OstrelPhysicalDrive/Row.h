#pragma once

#include "Records/PhysicalDrive.h"

#include <DatabaseORM/Models.h>
#include <DatabaseORM/Storage.h>

#include <cstdint>

namespace NAMESPACE_Ostrel {

/** Makes `row` afresh from `drive`. Returns 0. */
std::uint32_t setRowProperties(RaidDataModels::PD& row, const CNVMePhysicalDrive& drive);

// The row of a drive. Its keys are the host and the drive's serial number. No function here deletes it. A
// failure of the database is traced and becomes `ERR_GENERAL_FAILURE`; other exceptions pass through. An
// update finds its row by its keys and does nothing when there is none.

std::uint32_t insertRow(const DatabaseORM::storage_t& storage, const CNVMePhysicalDrive& drive);
std::uint32_t updateRow(const DatabaseORM::storage_t& storage, const CNVMePhysicalDrive& drive);

} // namespace NAMESPACE_Ostrel
