#include "OstrelAdapter/Properties.h"

#include "Ostrel/PluginApi.h"
#include "Records/HostCodes.h"
#include "Records/Lifetime.h"
#include "Records/Model.h"
#include "Records/Trace.h"

#include <PI/ErrorCode.h>
#include <PI/PluginHelper.h>

namespace NAMESPACE_Ostrel {
namespace {

bool setModel(CNVMeAdapter& adapter, PI::CProperty& property)
{
    property.SetValue(modelText(adapter.m_Vendor, adapter.m_Model));
    return true;
}

bool setModelFamily(CNVMeAdapter& adapter, PI::CProperty& property)
{
    property.SetValue(IsKnownModelFamily(adapter.m_Model) ? FAMILY_KNOWN : FAMILY_OTHER,
                      {FAMILY_KNOWN, FAMILY_OTHER});
    return true;
}

bool setHealthStatus(CNVMeAdapter& adapter, PI::CProperty& property)
{
    const std::uint32_t status = adapter.m_HealthStatus;
    property.SetValue(status, {ADAPTER_HEALTHY, ADAPTER_DEGRADED, STATUS_CRITICAL});
    property.SetIconPathID(status == STATUS_CRITICAL ? 24001 : status == ADAPTER_DEGRADED ? 24002 : 24000);
    return true;
}

bool setTemperature(CNVMeAdapter& adapter, PI::CProperty& property)
{
    return adapter.m_Temperature != UNKNOWN_TEMPERATURE && IsKnownModelFamily(adapter.m_Model) &&
           setMeasurement(adapter.m_Temperature, property);
}

bool setEndOfLifeDate(CNVMeAdapter& adapter, PI::CProperty& property)
{
    if (adapter.m_PowerOnHours == UNKNOWN_COUNTER)
        return false;
    adapter.m_EndOfLifeDate = endOfLifeDate(adapter);
    return setText<&CNVMeAdapter::m_EndOfLifeDate>(adapter, property);
}

bool setPowerOnHours(CNVMeAdapter& adapter, PI::CProperty& property)
{
    return adapter.m_PowerOnHours != UNKNOWN_COUNTER &&
           setNumber<&CNVMeAdapter::m_PowerOnHours>(adapter, property);
}

template<auto Member, std::int32_t Minimum>
bool setPercentage(CNVMeAdapter& adapter, PI::CProperty& property)
{
    property.SetValue(static_cast<std::int32_t>(adapter.*Member), Minimum, 100, 1);
    return true;
}

bool setSpareState(CNVMeAdapter& adapter, PI::CProperty& property)
{
    property.SetValue(adapter.m_SpareState, {SPARE_STATE_NORMAL, ADAPTER_DEGRADED, SPARE_STATE_CRITICAL});
    return true;
}

template<auto DataUnits>
bool setDataAmount(CNVMeAdapter& adapter, PI::CProperty& property)
{
    if (adapter.*DataUnits == UNKNOWN_COUNTER)
        return false;
    float amount = 0;
    PI::_UNITS units = PI::UNIT_NONE;
    if (!PI::CPluginHelper::ConvertBytesToOtherUnit(adapter.*DataUnits * BYTES_PER_DATA_UNIT, amount, units))
        return false;
    property.SetUnits(units);
    return setMeasurement(amount, property);
}

bool setEnduranceUsed(CNVMeAdapter& adapter, PI::CProperty& property)
{
    if (adapter.m_DataUnitsWritten == UNKNOWN_COUNTER)
        return false;
    const std::uint64_t tebibytes = (adapter.m_DataUnitsWritten * BYTES_PER_DATA_UNIT) >> 40U;
    property.SetValue(static_cast<std::int32_t>(tebibytes * 100 / adapter.m_LifetimeRating), 0, 100, 1);
    return true;
}

bool setWearState(CNVMeAdapter& adapter, PI::CProperty& property)
{
    property.SetValue(adapter.m_SpareStatus, {WEAR_NORMAL, WEAR_WARNING, WEAR_CRITICAL});
    return true;
}

bool setStatusReasons(CNVMeAdapter& adapter, PI::CProperty& property)
{
    if (adapter.m_HealthReasons.empty())
        return false;
    property.SetValue(adapter.m_HealthReasons, {40387, 40128, 40393, 40394, 40395, 40396, 40397, 40398, 40399,
                                                40400, 40401, 40402, 40266});
    return true;
}

constexpr std::uint32_t ALL = 0xFFFFFFFF;

// clang-format off
constexpr CPropertyRow<CNVMeAdapter> AdapterPropertyTable[] = {
    {{PI::PROP_NAME, 23081, 1, 1, ALL, PI::KIND_TEXT, PI::UNIT_NONE, 1}, setText<&CNVMeAdapter::m_Name>},
    {{PI::PROP_VENDOR, 23144, 1, 1, ALL, PI::KIND_TEXT, PI::UNIT_NONE, 1}, setText<&CNVMeAdapter::m_Vendor>},
    {{PI::PROP_MODEL, 23102, 1, 1, ALL, PI::KIND_TEXT, PI::UNIT_NONE, 1}, setModel},
    {{PI::PROP_MODEL_FAMILY, 1, 1, 1, 0, PI::KIND_CODE, PI::UNIT_NONE, 1}, setModelFamily},
    {{PI::PROP_ADAPTER_NUMBER, 23003, 1, 1, ALL, PI::KIND_NUMBER, PI::UNIT_NONE, 1},
     setNumber<&CNVMeAdapter::m_GlobalAdapterNumber>, 35023},
    {{PI::PROP_HEALTH_STATUS, 23127, 1, 1, ALL, PI::KIND_CODE, PI::UNIT_NONE, 1}, setHealthStatus},
    {{PI::PROP_PCI_SEGMENT, 23134, 1, 1, ALL, PI::KIND_NUMBER, PI::UNIT_NONE, 0},
     setNumber<&CNVMeAdapter::m_Segment>, 35039},
    {{PI::PROP_PCI_BUS, 23132, 1, 1, ALL, PI::KIND_NUMBER, PI::UNIT_NONE, 0},
     setNumber<&CNVMeAdapter::m_Bus>, 35016},
    {{PI::PROP_PCI_DEVICE, 23133, 1, 1, ALL, PI::KIND_NUMBER, PI::UNIT_NONE, 0},
     setNumber<&CNVMeAdapter::m_Device>, 35020},
    {{PI::PROP_PCI_FUNCTION, 23135, 1, 1, ALL, PI::KIND_NUMBER, PI::UNIT_NONE, 0},
     setNumber<&CNVMeAdapter::m_Function>, 35022},
    {{PI::PROP_LOCATION, 1, 1, 1, 0, PI::KIND_TEXT, PI::UNIT_NONE, 1}, setText<&CNVMeAdapter::m_Location>},
    {{PI::PROP_SERIAL_NUMBER, 23116, 1, 1, ALL, PI::KIND_TEXT, PI::UNIT_NONE, 1},
     setText<&CNVMeAdapter::m_SerialNumber>},
    {{PI::PROP_FIRMWARE, 23051, 1, 1, ALL, PI::KIND_TEXT, PI::UNIT_NONE, 1},
     setTextUnlessEmpty<&CNVMeAdapter::m_FirmwareRevision>},
    {{PI::PROP_VENDOR_TAG, 23016, 1, 1, ALL, PI::KIND_TEXT, PI::UNIT_NONE, 1},
     setTextUnlessEmpty<&CNVMeAdapter::m_VendorTag>},
    {{PI::PROP_DEVICE_NAME, 23090, 1, 1, ALL, PI::KIND_TEXT, PI::UNIT_NONE, 1},
     setText<&CNVMeAdapter::m_DeviceName>},
    {{PI::PROP_DRIVER, 23041, 1, 1, ALL, PI::KIND_TEXT, PI::UNIT_NONE, 1}, setText<&CNVMeAdapter::m_Driver>},
    {{PI::PROP_DRIVER_VERSION, 23042, 1, 1, ALL, PI::KIND_TEXT, PI::UNIT_NONE, 1},
     setTextUnlessEmpty<&CNVMeAdapter::m_DriverVersion>},
    {{PI::PROP_TEMPERATURE, 23024, 1, 1, ALL, PI::KIND_NUMBER, PI::UNIT_CELSIUS, 0}, setTemperature},
    {{PI::PROP_END_OF_LIFE_DATE, 23045, 1, 1, ALL, PI::KIND_TEXT, PI::UNIT_NONE, 0}, setEndOfLifeDate},
    {{PI::PROP_POWER_ON_HOURS, 23101, 1, 1, ALL, PI::KIND_NUMBER, PI::UNIT_HOURS, 0}, setPowerOnHours},
    {{PI::PROP_AVAILABLE_SPARE, 23110, 1, 1, ALL, PI::KIND_BOUNDED, PI::UNIT_PERCENT, 0},
     setPercentage<&CNVMeAdapter::m_ReserveSpace, 0>, 35034},
    // This caption has a property's number.
    {{PI::PROP_SPARE_STATE, 23112, 1, 1, ALL, PI::KIND_CODE, PI::UNIT_NONE, 1}, setSpareState, 30017},
    {{PI::PROP_SPARE_THRESHOLD, 23113, 1, 1, ALL, PI::KIND_BOUNDED, PI::UNIT_PERCENT, 1},
     setPercentage<&CNVMeAdapter::m_WarningThreshold, 1>, 35045},
    {{PI::PROP_DATA_READ, 23017, 1, 1, ALL, PI::KIND_FLOAT, PI::UNIT_NONE, 0},
     setDataAmount<&CNVMeAdapter::m_DataUnitsRead>},
    {{PI::PROP_DATA_WRITTEN, 23018, 1, 1, ALL, PI::KIND_FLOAT, PI::UNIT_NONE, 0},
     setDataAmount<&CNVMeAdapter::m_DataUnitsWritten>},
    {{PI::PROP_ENDURANCE_USED, 23105, 1, 1, ALL, PI::KIND_BOUNDED, PI::UNIT_PERCENT, 0}, setEnduranceUsed},
    {{PI::PROP_WEAR_STATE, 23147, 1, 1, ALL, PI::KIND_CODE, PI::UNIT_NONE, 1}, setWearState},
    {{PI::PROP_MEDIA_ERRORS, 23143, 1, 1, ALL, PI::KIND_NUMBER, PI::UNIT_NONE, 0},
     setNumber<&CNVMeAdapter::m_UnsafeShutdowns>},
    {{PI::PROP_STATUS_REASONS, 23004, 1, 1, ALL, PI::KIND_CODES, PI::UNIT_NONE, 1}, setStatusReasons},
};
// clang-format on

} // namespace

std::span<const CPropertyRow<CNVMeAdapter>> adapterPropertyTable()
{
    return AdapterPropertyTable;
}

std::uint32_t IPLUGINAPI_IMPL::GetAdapterProperties(CNVMeAdapter& adapter,
                                                    std::vector<PI::CProperty>& properties,
                                                    std::uint32_t propertyId)
{
    OSTREL_TRACE(TRACE_FLOW) << "ENTER GetAdapterProperties (%d)" << adapter.m_GlobalAdapterNumber;
    buildProperties(AdapterPropertyTable, adapter, propertyId, properties);
    const std::uint32_t result = PI::ERR_SUCCESS;
    OSTREL_TRACE(TRACE_FLOW) << "LEAVE GetAdapterProperties -> %d" << result;
    return result;
}

} // namespace NAMESPACE_Ostrel
