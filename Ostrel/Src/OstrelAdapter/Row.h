#pragma once

#include "Records/Adapter.h"

#include <DatabaseORM/Models.h>
#include <DatabaseORM/Storage.h>

#include <cstdint>

namespace NAMESPACE_Ostrel {

/** Makes `row` afresh from `adapter`. Returns 0. */
std::uint32_t setRowProperties(RaidDataModels::Adapter& row, const CNVMeAdapter& adapter);

// The row of an adapter. Its keys are the host and the adapter's number. A failure of the database is traced
// and becomes `ERR_GENERAL_FAILURE`; other exceptions pass through. An update finds its row by its keys and
// does nothing when there is none.

std::uint32_t insertRow(const DatabaseORM::storage_t& storage, const CNVMeAdapter& adapter);
std::uint32_t updateRow(const DatabaseORM::storage_t& storage, const CNVMeAdapter& adapter);
std::uint32_t deleteRow(const DatabaseORM::storage_t& storage, const CNVMeAdapter& adapter);

} // namespace NAMESPACE_Ostrel
