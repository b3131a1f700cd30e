#pragma once

#include "Records/PhysicalDrive.h"

#include <DatabaseORM/Models.h>
#include <DatabaseORM/StatementText.h>
#include <DatabaseORM/Storage.h>

#include <cstdint>
#include <optional>

namespace NAMESPACE_Ostrel {

/** Makes `row` afresh from `drive`. Returns 0. */
std::uint32_t setRowProperties(RaidDataModels::PD& row, const CNVMePhysicalDrive& drive);

// The row of a drive. Its keys are the host and the drive's serial number. No function here deletes it. A
// failure of the database is traced and becomes `ERR_GENERAL_FAILURE`; other exceptions pass through. An
// update finds its row by its keys and does nothing when there is none.

std::uint32_t insertRow(const DatabaseORM::storage_t& storage, const CNVMePhysicalDrive& drive);

/** The insert of one drive's row, to be run many times. The first run fills the row, the others repeat it. */
class CDriveRowInsert
{
public:
    /** `drive` must outlive this object and stay as it is. */
    explicit CDriveRowInsert(const CNVMePhysicalDrive& drive) : m_Drive(&drive) {}

    /** Does and traces what `insertRow` does. */
    std::uint32_t Run(const DatabaseORM::storage_t& storage) const;

private:
    const CNVMePhysicalDrive* m_Drive;
    mutable std::optional<DatabaseORM::insertion_t> m_Insertion; ///< none until the first run
};

std::uint32_t updateRow(const DatabaseORM::storage_t& storage, const CNVMePhysicalDrive& drive);

} // namespace NAMESPACE_Ostrel
