#include "OstrelPhysicalDrive/Properties.h"

#include "Records/Model.h"
#include "Records/Trace.h"

#include <PI/CaptionId.h>
#include <PI/ErrorCode.h>
#include <PI/StateCode.h>

namespace NAMESPACE_Ostrel {
namespace {

bool setZero(const CNVMePhysicalDrive& /*drive*/, PI::CProperty& property)
{
    property.SetValue(std::uint64_t{0});
    return true;
}

bool setModel(const CNVMePhysicalDrive& drive, PI::CProperty& property)
{
    property.SetValue(modelText(drive.m_Vendor, drive.m_Model));
    return true;
}

bool setDriveType(const CNVMePhysicalDrive& /*drive*/, PI::CProperty& property)
{
    property.SetValue(PI::DRIVE_TYPE_SSD, {PI::DRIVE_TYPE_SSD});
    return true;
}

bool setStatus(const CNVMePhysicalDrive& drive, PI::CProperty& property)
{
    property.SetValue(drive.m_Status, {PI::DRIVE_OPERATIONAL, PI::DRIVE_WARNING, PI::HEALTH_CRITICAL});
    property.SetIconPathID(drive.m_Status == PI::HEALTH_CRITICAL ? PI::ICON_DRIVE_CRITICAL
                           : drive.m_Status == PI::DRIVE_WARNING ? PI::ICON_DRIVE_WARNING
                                                                 : PI::ICON_DRIVE_OPERATIONAL);
    return true;
}

/** For known families the adapter shows the temperature instead. */
bool setTemperature(const CNVMePhysicalDrive& drive, PI::CProperty& property)
{
    return drive.m_Temperature != UNKNOWN_TEMPERATURE && !IsKnownModelFamily(drive.m_Model) &&
           setMeasurement(drive.m_Temperature, property);
}

constexpr std::uint32_t ALL = 0xFFFFFFFF;

// clang-format off
constexpr CPropertyRow<const CNVMePhysicalDrive> PhysicalDrivePropertyTable[] = {
    {{PI::PROP_NAME, PI::DRIVE_CAPTION_NAME, 1, 1, ALL, PI::KIND_TEXT, PI::UNIT_NONE, 1},
     setText<&CNVMePhysicalDrive::m_ProductName>},
    {{PI::PROP_DRIVE_CHANNEL, PI::DRIVE_CAPTION_CHANNEL, 1, 1, 4, PI::KIND_NUMBER, PI::UNIT_NONE, 1}, setZero},
    {{PI::PROP_DRIVE_ID, PI::DRIVE_CAPTION_DRIVE_ID, 1, 1, ALL, PI::KIND_NUMBER, PI::UNIT_NONE, 1}, setZero},
    {{PI::PROP_LOCATION, PI::CAPTION_NONE, 1, 1, 0, PI::KIND_TEXT, PI::UNIT_NONE, 1},
     setText<&CNVMePhysicalDrive::m_Location>},
    {{PI::PROP_VENDOR, PI::DRIVE_CAPTION_VENDOR, 1, 1, ALL, PI::KIND_TEXT, PI::UNIT_NONE, 1},
     setText<&CNVMePhysicalDrive::m_Vendor>},
    {{PI::PROP_MODEL, PI::DRIVE_CAPTION_MODEL, 1, 1, ALL, PI::KIND_TEXT, PI::UNIT_NONE, 1}, setModel},
    {{PI::PROP_DRIVE_TYPE, PI::DRIVE_CAPTION_TYPE, 1, 1, ALL, PI::KIND_CODE, PI::UNIT_NONE, 1}, setDriveType},
    {{PI::PROP_CAPACITY, PI::DRIVE_CAPTION_CAPACITY, 1, 1, ALL, PI::KIND_NUMBER, PI::UNIT_MIB, 1},
     setNumber<&CNVMePhysicalDrive::m_CapacityMiB>},
    {{PI::PROP_USABLE_CAPACITY, PI::DRIVE_CAPTION_USABLE_CAPACITY, 1, 1, ALL, PI::KIND_NUMBER, PI::UNIT_MIB, 1},
     setNumber<&CNVMePhysicalDrive::m_UsableCapacityMiB>},
    {{PI::PROP_HEALTH_STATUS, PI::DRIVE_CAPTION_STATE, 1, 1, ALL, PI::KIND_CODE, PI::UNIT_NONE, 1}, setStatus},
    {{PI::PROP_RESERVED_CAPACITY, PI::DRIVE_CAPTION_RESERVED_CAPACITY, 1, 1, ALL, PI::KIND_NUMBER, PI::UNIT_MIB, 1},
     setNumber<&CNVMePhysicalDrive::m_ReservedMiB>},
    {{PI::PROP_RESERVED_PERCENT, PI::DRIVE_CAPTION_RESERVED_PERCENT, 1, 1, ALL, PI::KIND_NUMBER, PI::UNIT_PERCENT, 1},
     setNumber<&CNVMePhysicalDrive::m_ReservedPercent>},
    {{PI::PROP_BLOCK_SIZE, PI::DRIVE_CAPTION_BLOCK_SIZE, 1, 1, ALL, PI::KIND_NUMBER, PI::UNIT_BYTES, 1},
     setNumber<&CNVMePhysicalDrive::m_BlockSize>},
    {{PI::PROP_DRIVE_TEMPERATURE, PI::DRIVE_CAPTION_TEMPERATURE, 1, 1, ALL, PI::KIND_FLOAT, PI::UNIT_CELSIUS, 0}, setTemperature},
    {{PI::PROP_SERIAL_NUMBER, PI::DRIVE_CAPTION_SERIAL_NUMBER, 1, 1, ALL, PI::KIND_TEXT, PI::UNIT_NONE, 0},
     setText<&CNVMePhysicalDrive::m_SerialNumber>},
};
// clang-format on

} // namespace

std::span<const CPropertyRow<const CNVMePhysicalDrive>> physicalDrivePropertyTable()
{
    return PhysicalDrivePropertyTable;
}

std::uint32_t getPhysicalDriveProperties(const CNVMePhysicalDrive& drive,
                                         std::vector<PI::CProperty>& properties, std::uint32_t propertyId)
{
    OSTREL_TRACE_WITHIN(TRACE_FLOW, "GetPhysicalDriveProperties") << "ENTER GetPhysicalDriveProperties ()";
    buildProperties(PhysicalDrivePropertyTable, drive, propertyId, properties);
    return PI::ERR_SUCCESS;
}

} // namespace NAMESPACE_Ostrel
