#include "OstrelAdapter/Properties.h"

#include "Records/Lifetime.h"
#include "Records/Model.h"
#include "Records/Trace.h"

#include <PI/CaptionId.h>
#include <PI/ErrorCode.h>
#include <PI/PluginHelper.h>
#include <PI/StateCode.h>

#include <iterator>

namespace NAMESPACE_Ostrel {
namespace {

bool setModel(CNVMeAdapter& adapter, PI::CProperty& property)
{
    property.SetValue(modelText(adapter.m_Vendor, adapter.m_Model));
    return true;
}

bool setModelFamily(CNVMeAdapter& adapter, PI::CProperty& property)
{
    property.SetValue(IsKnownModelFamily(adapter.m_Model) ? PI::KNOWN_FAMILY_YES : PI::KNOWN_FAMILY_NO,
                      {PI::KNOWN_FAMILY_YES, PI::KNOWN_FAMILY_NO});
    return true;
}

bool setHealthStatus(CNVMeAdapter& adapter, PI::CProperty& property)
{
    const std::uint32_t status = adapter.m_HealthStatus;
    property.SetValue(status, {PI::HEALTH_HEALTHY, PI::HEALTH_DEGRADED, PI::HEALTH_CRITICAL});
    property.SetIconPathID(status == PI::HEALTH_CRITICAL   ? PI::ICON_ADAPTER_CRITICAL
                           : status == PI::HEALTH_DEGRADED ? PI::ICON_ADAPTER_DEGRADED
                                                           : PI::ICON_ADAPTER_HEALTHY);
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
    property.SetValue(adapter.m_SpareState, {PI::SPARE_SUFFICIENT, PI::HEALTH_DEGRADED, PI::SPARE_EXHAUSTED});
    return true;
}

template<auto DataUnits>
bool setDataAmount(CNVMeAdapter& adapter, PI::CProperty& property)
{
    if (adapter.*DataUnits == UNKNOWN_COUNTER)
        return false;
    float amount = 0;
    PI::_UNITS units = PI::UNIT_NONE;
    if (!PI::CPluginHelper::ConvertBytesToOtherUnit(bytesOfDataUnits(adapter.*DataUnits), amount, units))
        return false;
    property.SetUnits(units);
    return setMeasurement(amount, property);
}

bool setEnduranceUsed(CNVMeAdapter& adapter, PI::CProperty& property)
{
    if (adapter.m_DataUnitsWritten == UNKNOWN_COUNTER)
        return false;
    const std::uint64_t tebibytes = bytesOfDataUnits(adapter.m_DataUnitsWritten) >> 40U;
    property.SetValue(static_cast<std::int32_t>(tebibytes * 100 / adapter.m_LifetimeRating), 0, 100, 1);
    return true;
}

bool setWearState(CNVMeAdapter& adapter, PI::CProperty& property)
{
    property.SetValue(adapter.m_SpareStatus, {PI::WEAR_OK, PI::WEAR_WARNING, PI::WEAR_CRITICAL});
    return true;
}

bool setStatusReasons(CNVMeAdapter& adapter, PI::CProperty& property)
{
    if (adapter.m_HealthReasons.empty())
        return false;
    property.SetValue(adapter.m_HealthReasons,
                      {std::begin(PI::FORESEEN_REASONS), std::end(PI::FORESEEN_REASONS)});
    return true;
}

constexpr std::uint32_t ALL = 0xFFFFFFFF;

// clang-format off
constexpr CPropertyRow<CNVMeAdapter> AdapterPropertyTable[] = {
    {{PI::PROP_NAME, PI::CAPTION_NAME, 1, 1, ALL, PI::KIND_TEXT, PI::UNIT_NONE, 1}, setText<&CNVMeAdapter::m_Name>},
    {{PI::PROP_VENDOR, PI::CAPTION_VENDOR, 1, 1, ALL, PI::KIND_TEXT, PI::UNIT_NONE, 1}, setText<&CNVMeAdapter::m_Vendor>},
    {{PI::PROP_MODEL, PI::CAPTION_MODEL, 1, 1, ALL, PI::KIND_TEXT, PI::UNIT_NONE, 1}, setModel},
    {{PI::PROP_MODEL_FAMILY, PI::CAPTION_NONE, 1, 1, 0, PI::KIND_CODE, PI::UNIT_NONE, 1}, setModelFamily},
    {{PI::PROP_ADAPTER_NUMBER, PI::CAPTION_ADAPTER_NUMBER, 1, 1, ALL, PI::KIND_NUMBER, PI::UNIT_NONE, 1},
     setNumber<&CNVMeAdapter::m_GlobalAdapterNumber>, PI::SHOWN_CAPTION_ADAPTER_NUMBER},
    {{PI::PROP_HEALTH_STATUS, PI::CAPTION_HEALTH_STATUS, 1, 1, ALL, PI::KIND_CODE, PI::UNIT_NONE, 1}, setHealthStatus},
    {{PI::PROP_PCI_SEGMENT, PI::CAPTION_PCI_SEGMENT, 1, 1, ALL, PI::KIND_NUMBER, PI::UNIT_NONE, 0},
     setNumber<&CNVMeAdapter::m_Segment>, PI::SHOWN_CAPTION_PCI_SEGMENT},
    {{PI::PROP_PCI_BUS, PI::CAPTION_PCI_BUS, 1, 1, ALL, PI::KIND_NUMBER, PI::UNIT_NONE, 0},
     setNumber<&CNVMeAdapter::m_Bus>, PI::SHOWN_CAPTION_PCI_BUS},
    {{PI::PROP_PCI_DEVICE, PI::CAPTION_PCI_DEVICE, 1, 1, ALL, PI::KIND_NUMBER, PI::UNIT_NONE, 0},
     setNumber<&CNVMeAdapter::m_Device>, PI::SHOWN_CAPTION_PCI_DEVICE},
    {{PI::PROP_PCI_FUNCTION, PI::CAPTION_PCI_FUNCTION, 1, 1, ALL, PI::KIND_NUMBER, PI::UNIT_NONE, 0},
     setNumber<&CNVMeAdapter::m_Function>, PI::SHOWN_CAPTION_PCI_FUNCTION},
    {{PI::PROP_LOCATION, PI::CAPTION_NONE, 1, 1, 0, PI::KIND_TEXT, PI::UNIT_NONE, 1}, setText<&CNVMeAdapter::m_Location>},
    {{PI::PROP_SERIAL_NUMBER, PI::CAPTION_SERIAL_NUMBER, 1, 1, ALL, PI::KIND_TEXT, PI::UNIT_NONE, 1},
     setText<&CNVMeAdapter::m_SerialNumber>},
    {{PI::PROP_FIRMWARE, PI::CAPTION_FIRMWARE, 1, 1, ALL, PI::KIND_TEXT, PI::UNIT_NONE, 1},
     setTextUnlessEmpty<&CNVMeAdapter::m_FirmwareRevision>},
    {{PI::PROP_VENDOR_TAG, PI::CAPTION_VENDOR_TAG, 1, 1, ALL, PI::KIND_TEXT, PI::UNIT_NONE, 1},
     setTextUnlessEmpty<&CNVMeAdapter::m_VendorTag>},
    {{PI::PROP_DEVICE_NAME, PI::CAPTION_DEVICE_NAME, 1, 1, ALL, PI::KIND_TEXT, PI::UNIT_NONE, 1},
     setText<&CNVMeAdapter::m_DeviceName>},
    {{PI::PROP_DRIVER, PI::CAPTION_DRIVER, 1, 1, ALL, PI::KIND_TEXT, PI::UNIT_NONE, 1}, setText<&CNVMeAdapter::m_Driver>},
    {{PI::PROP_DRIVER_VERSION, PI::CAPTION_DRIVER_VERSION, 1, 1, ALL, PI::KIND_TEXT, PI::UNIT_NONE, 1},
     setTextUnlessEmpty<&CNVMeAdapter::m_DriverVersion>},
    {{PI::PROP_TEMPERATURE, PI::CAPTION_TEMPERATURE, 1, 1, ALL, PI::KIND_NUMBER, PI::UNIT_CELSIUS, 0}, setTemperature},
    {{PI::PROP_END_OF_LIFE_DATE, PI::CAPTION_END_OF_LIFE, 1, 1, ALL, PI::KIND_TEXT, PI::UNIT_NONE, 0}, setEndOfLifeDate},
    {{PI::PROP_POWER_ON_HOURS, PI::CAPTION_POWER_ON_HOURS, 1, 1, ALL, PI::KIND_NUMBER, PI::UNIT_HOURS, 0}, setPowerOnHours},
    {{PI::PROP_AVAILABLE_SPARE, PI::CAPTION_AVAILABLE_SPARE, 1, 1, ALL, PI::KIND_BOUNDED, PI::UNIT_PERCENT, 0},
     setPercentage<&CNVMeAdapter::m_ReserveSpace, 0>, PI::SHOWN_CAPTION_AVAILABLE_SPARE},
    {{PI::PROP_SPARE_STATE, PI::CAPTION_SPARE_STATE, 1, 1, ALL, PI::KIND_CODE, PI::UNIT_NONE, 1}, setSpareState, PI::SHOWN_CAPTION_SPARE_STATE},
    {{PI::PROP_SPARE_THRESHOLD, PI::CAPTION_SPARE_THRESHOLD, 1, 1, ALL, PI::KIND_BOUNDED, PI::UNIT_PERCENT, 1},
     setPercentage<&CNVMeAdapter::m_WarningThreshold, 1>, PI::SHOWN_CAPTION_SPARE_THRESHOLD},
    {{PI::PROP_DATA_READ, PI::CAPTION_DATA_READ, 1, 1, ALL, PI::KIND_FLOAT, PI::UNIT_NONE, 0},
     setDataAmount<&CNVMeAdapter::m_DataUnitsRead>},
    {{PI::PROP_DATA_WRITTEN, PI::CAPTION_DATA_WRITTEN, 1, 1, ALL, PI::KIND_FLOAT, PI::UNIT_NONE, 0},
     setDataAmount<&CNVMeAdapter::m_DataUnitsWritten>},
    {{PI::PROP_ENDURANCE_USED, PI::CAPTION_ENDURANCE_USED, 1, 1, ALL, PI::KIND_BOUNDED, PI::UNIT_PERCENT, 0}, setEnduranceUsed},
    {{PI::PROP_WEAR_STATE, PI::CAPTION_WEAR_STATE, 1, 1, ALL, PI::KIND_CODE, PI::UNIT_NONE, 1}, setWearState},
    {{PI::PROP_MEDIA_ERRORS, PI::CAPTION_MEDIA_ERRORS, 1, 1, ALL, PI::KIND_NUMBER, PI::UNIT_NONE, 0},
     setNumber<&CNVMeAdapter::m_UnsafeShutdowns>},
    {{PI::PROP_STATUS_REASONS, PI::CAPTION_STATUS_REASONS, 1, 1, ALL, PI::KIND_CODES, PI::UNIT_NONE, 1}, setStatusReasons},
};
// clang-format on

} // namespace

std::span<const CPropertyRow<CNVMeAdapter>> adapterPropertyTable()
{
    return AdapterPropertyTable;
}

std::uint32_t getAdapterProperties(CNVMeAdapter& adapter, std::vector<PI::CProperty>& properties,
                                   std::uint32_t propertyId)
{
    OSTREL_TRACE_WITHIN(TRACE_FLOW, "GetAdapterProperties")
        << "ENTER GetAdapterProperties (%d)" << adapter.m_GlobalAdapterNumber;
    buildProperties(AdapterPropertyTable, adapter, propertyId, properties);
    const std::uint32_t result = PI::ERR_SUCCESS;
    OSTREL_TRACE_WITHIN(TRACE_FLOW, "GetAdapterProperties") << "LEAVE GetAdapterProperties -> %d" << result;
    return result;
}

} // namespace NAMESPACE_Ostrel
