#include "OstrelPhysicalDrive/Properties.h"

#include "Ostrel/PluginApi.h"
#include "Records/HostCodes.h"
#include "Records/Model.h"
#include "Records/Trace.h"

#include <PI/ErrorCode.h>

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
    property.SetValue(DRIVE_TYPE_SOLID_STATE, {DRIVE_TYPE_SOLID_STATE});
    return true;
}

bool setStatus(const CNVMePhysicalDrive& drive, PI::CProperty& property)
{
    property.SetValue(drive.m_Status, {DRIVE_ONLINE, DRIVE_DEGRADED, STATUS_CRITICAL});
    property.SetIconPathID(drive.m_Status == STATUS_CRITICAL  ? 24177
                           : drive.m_Status == DRIVE_DEGRADED ? 24189
                                                              : 24183);
    return true;
}

/** Of the known families the adapter shows the temperature instead. */
bool setTemperature(const CNVMePhysicalDrive& drive, PI::CProperty& property)
{
    return drive.m_Temperature != UNKNOWN_TEMPERATURE && !IsKnownModelFamily(drive.m_Model) &&
           setMeasurement(drive.m_Temperature, property);
}

constexpr std::uint32_t ALL = 0xFFFFFFFF;

// clang-format off
constexpr CPropertyRow<const CNVMePhysicalDrive> PhysicalDrivePropertyTable[] = {
    {{PI::PROP_NAME, 23298, 1, 1, ALL, PI::KIND_TEXT, PI::UNIT_NONE, 1},
     setText<&CNVMePhysicalDrive::m_ProductName>},
    {{PI::PROP_DRIVE_CHANNEL, 23305, 1, 1, 4, PI::KIND_NUMBER, PI::UNIT_NONE, 1}, setZero},
    {{PI::PROP_DRIVE_ID, 23284, 1, 1, ALL, PI::KIND_NUMBER, PI::UNIT_NONE, 1}, setZero},
    {{PI::PROP_LOCATION, 1, 1, 1, 0, PI::KIND_TEXT, PI::UNIT_NONE, 1},
     setText<&CNVMePhysicalDrive::m_Location>},
    {{PI::PROP_VENDOR, 23331, 1, 1, ALL, PI::KIND_TEXT, PI::UNIT_NONE, 1},
     setText<&CNVMePhysicalDrive::m_Vendor>},
    {{PI::PROP_MODEL, 23308, 1, 1, ALL, PI::KIND_TEXT, PI::UNIT_NONE, 1}, setModel},
    {{PI::PROP_DRIVE_TYPE, 23329, 1, 1, ALL, PI::KIND_CODE, PI::UNIT_NONE, 1}, setDriveType},
    {{PI::PROP_CAPACITY, 23304, 1, 1, ALL, PI::KIND_NUMBER, PI::UNIT_MIB, 1},
     setNumber<&CNVMePhysicalDrive::m_CapacityMiB>},
    {{PI::PROP_USABLE_CAPACITY, 23281, 1, 1, ALL, PI::KIND_NUMBER, PI::UNIT_MIB, 1},
     setNumber<&CNVMePhysicalDrive::m_UsableCapacityMiB>},
    {{PI::PROP_HEALTH_STATUS, 23324, 1, 1, ALL, PI::KIND_CODE, PI::UNIT_NONE, 1}, setStatus},
    {{PI::PROP_RESERVED_CAPACITY, 23290, 1, 1, ALL, PI::KIND_NUMBER, PI::UNIT_MIB, 1},
     setNumber<&CNVMePhysicalDrive::m_ReservedMiB>},
    {{PI::PROP_RESERVED_PERCENT, 23289, 1, 1, ALL, PI::KIND_NUMBER, PI::UNIT_PERCENT, 1},
     setNumber<&CNVMePhysicalDrive::m_ReservedPercent>},
    {{PI::PROP_BLOCK_SIZE, 23278, 1, 1, ALL, PI::KIND_NUMBER, PI::UNIT_BYTES, 1},
     setNumber<&CNVMePhysicalDrive::m_BlockSize>},
    {{PI::PROP_DRIVE_TEMPERATURE, 23326, 1, 1, ALL, PI::KIND_FLOAT, PI::UNIT_CELSIUS, 0}, setTemperature},
    {{PI::PROP_SERIAL_NUMBER, 23320, 1, 1, ALL, PI::KIND_TEXT, PI::UNIT_NONE, 0},
     setText<&CNVMePhysicalDrive::m_SerialNumber>},
};
// clang-format on

} // namespace

std::span<const CPropertyRow<const CNVMePhysicalDrive>> physicalDrivePropertyTable()
{
    return PhysicalDrivePropertyTable;
}

std::uint32_t IPLUGINAPI_IMPL::GetPhysicalDriveProperties(const CNVMePhysicalDrive& drive,
                                                          std::vector<PI::CProperty>& properties,
                                                          std::uint32_t propertyId)
{
    OSTREL_TRACE(TRACE_FLOW) << "ENTER GetPhysicalDriveProperties ()";
    buildProperties(PhysicalDrivePropertyTable, drive, propertyId, properties);
    return PI::ERR_SUCCESS;
}

} // namespace NAMESPACE_Ostrel
