#include "OstrelPhysicalDrive/Row.h"

#include "OstrelPhysicalDrive/Properties.h"
#include "Records/Model.h"
#include "Records/RowBuilder.h"

#include <DatabaseORM/StatementBuilder.h>
#include <PI/PluginHelper.h>
#include <PI/StateCode.h>

#include <array>
#include <charconv>

namespace NAMESPACE_Ostrel {
namespace {

using RaidDataModels::PD;

std::string statusText(const CNVMePhysicalDrive& drive)
{
    return PI::PropertyValueToString(drive.m_Status);
}

std::string driveTypeText(const CNVMePhysicalDrive& /*drive*/)
{
    return PI::PropertyValueToString(PI::DRIVE_TYPE_SSD);
}

std::string modelOf(const CNVMePhysicalDrive& drive)
{
    return rowModelText(drive.m_Model);
}

std::string temperatureText(const CNVMePhysicalDrive& drive)
{
    if (drive.m_Temperature == UNKNOWN_TEMPERATURE)
        return std::string(DatabaseORM::NULL_TEXT);
    // The shortest text of the number, whatever the process's locale.
    std::array<char, 32> digits{};
    const auto end = std::to_chars(digits.data(), digits.data() + digits.size(), drive.m_Temperature).ptr;
    return {digits.data(), end};
}

std::string zero(const CNVMePhysicalDrive& /*drive*/)
{
    return "0";
}

constexpr CRowColumn<CNVMePhysicalDrive, PD> COLUMNS[] = {
    {PI::PROP_VENDOR, &PD::m_Vendor, rowText<&CNVMePhysicalDrive::m_Vendor>},
    {PI::PROP_NAME, &PD::m_Name, rowText<&CNVMePhysicalDrive::m_ProductName>},
    {PI::PROP_HEALTH_STATUS, &PD::m_Status, statusText},
    {PI::PROP_SERIAL_NUMBER, &PD::m_SerialNumber, rowText<&CNVMePhysicalDrive::m_SerialNumber>},
    {PI::PROP_DRIVE_TYPE, &PD::m_DriveType, driveTypeText},
    {PI::PROP_CAPACITY, &PD::m_Capacity, rowNumber<&CNVMePhysicalDrive::m_CapacityMiB>},
    {PI::PROP_USABLE_CAPACITY, &PD::m_UsableCapacity, rowNumber<&CNVMePhysicalDrive::m_UsableCapacityMiB>},
    {PI::PROP_MODEL, &PD::m_Model, modelOf},
    {PI::PROP_DRIVE_TEMPERATURE, &PD::m_Temperature, temperatureText},
    {PI::PROP_DRIVE_CHANNEL, &PD::m_Channel, zero},
    {PI::PROP_DRIVE_ID, &PD::m_DriveNumber, zero},
    {PI::PROP_LOCATION, &PD::m_Location, rowText<&CNVMePhysicalDrive::m_Location>},
};

std::string keyText(const CNVMePhysicalDrive& drive)
{
    return DatabaseORM::escapeQuotes(drive.m_SerialNumber);
}

DatabaseORM::compoundCondition_t<PD> keyOf(const CNVMePhysicalDrive& drive)
{
    return {{&PD::m_HostName, RaidDataModels::LOCAL_HOST}, {&PD::m_DriveKey, keyText(drive)}};
}

constexpr CRowTrace INSERT = {"PD (%s) inserted to db.",
                              "Storage query exception thrown during inserting PD (%s) to db. (%s)"};
constexpr CRowTrace UPDATE = {"PD (%s) updated in db.",
                              "Storage query exception thrown during updating PD (%s) in db. (%s)"};

void traceFilling()
{
    OSTREL_TRACE_WITHIN(TRACE_FLOW, "SetDatabaseObjectProperties")
        << "ENTER SetDatabaseObjectProperties (PhysicalDisk)";
}

} // namespace

std::uint32_t setRowProperties(PD& row, const CNVMePhysicalDrive& drive)
{
    traceFilling();
    row = PD();
    row.m_HostName = RaidDataModels::LOCAL_HOST;
    row.m_DriveKey = keyText(drive);
    fillRow(physicalDrivePropertyTable(), COLUMNS, drive, row);
    return PI::ERR_SUCCESS;
}

std::uint32_t insertRow(const DatabaseORM::storage_t& storage, const CNVMePhysicalDrive& drive)
{
    return CDriveRowInsert(drive).Run(storage);
}

std::uint32_t CDriveRowInsert::Run(const DatabaseORM::storage_t& storage) const
{
    const auto insert = [&] {
        if (m_Insertion) {
            traceFilling();
        } else {
            PD row;
            (void)setRowProperties(row, *m_Drive);
            m_Insertion = DatabaseORM::makeInsertion(storage, row);
        }
        (void)DatabaseORM::runInsertion(storage, *m_Insertion, DatabaseORM::QUERY_FAILED);
        return true;
    };
    return runOnRow(OSTREL_WITHIN("InsertObjectToDatabase"), INSERT, insert, m_Drive->m_ProductName);
}

std::uint32_t updateRow(const DatabaseORM::storage_t& storage, const CNVMePhysicalDrive& drive)
{
    const auto update = [&] {
        const auto found = DatabaseORM::select(storage, keyOf(drive));
        if (found.empty())
            return false;
        PD row;
        (void)setRowProperties(row, drive);
        row.m_ID = found.front().m_ID;
        DatabaseORM::update(storage, row);
        return true;
    };
    return runOnRow(OSTREL_WITHIN("UpdateObjectInDatabase"), UPDATE, update, drive.m_ProductName);
}

} // namespace NAMESPACE_Ostrel
