#include "Ostrel/CarriedIdentity.h"
#include "Ostrel/KnownControllers.h"
#include "Ostrel/PluginApi.h"
#include "Records/Health.h"
#include "Records/Lifetime.h"
#include "Records/Location.h"
#include "Records/Text.h"
#include "Records/Trace.h"
#include "Records/Vendor.h"

#include <PI/ErrorCode.h>
#include <TLXX/ConfigManager.h>
#include <TLXX/IntelLogs.h>

#include <string>

namespace NAMESPACE_Ostrel {
namespace {

constexpr int FREEZING_POINT = 273; // in kelvin

void takeDescription(CNVMeAdapter& adapter, const NVMeDevice& device, const std::string& driverVersion)
{
    adapter.m_DeviceName = device.deviceName;
    std::erase(adapter.m_DeviceName, '\\');
    adapter.m_Vendor = vendorName(device.identifyController.VID);
    adapter.m_Model = device.identifyController.sModelNumber();
    adapter.m_ModelName = adapter.m_Model;
    adapter.m_SerialNumber = device.identifyController.sSerialNumber();
    adapter.m_Driver = device.driver;
    adapter.m_DriverVersion = driverVersion;
    adapter.m_FirmwareRevision = device.identifyController.sFirmwareRevision();
}

void locate(CNVMeAdapter& adapter)
{
    TLXX::CPciLocation place;
    // A segment counts for a controller in the very first slot alone; elsewhere location texts never name
    // one.
    if (TLXX::CConfigManager::GetLocation(g_KnownControllers, adapter.m_DeviceIndex + 1, place.m_Segment,
                                          place.m_Bus, place.m_Device, place.m_Function) &&
        (place.m_Bus != 0 || place.m_Device != 0 || place.m_Function != 0))
        place.m_Segment = 0;
    adapter.m_Segment = place.m_Segment;
    adapter.m_Bus = place.m_Bus;
    adapter.m_Device = place.m_Device;
    adapter.m_Function = place.m_Function;
    adapter.m_Location = adapterLocation(adapter);
}

std::int32_t globalAdapterNumber(const CNVMeAdapter& adapter)
{
    PI::CGlobalAdapterID identity("localhost");
    identity.SetSegment(adapter.m_Segment);
    identity.SetBus(adapter.m_Bus);
    identity.SetDevice(adapter.m_Device);
    identity.SetFunction(adapter.m_Function);
    identity.GenerateUniqueAdapterNumber();
    return identity.GetGlobalAdapterNumber();
}

} // namespace

std::uint32_t IPLUGINAPI_IMPL::ScanAdpater(CNVMeAdapter& adapter, std::uint32_t deviceIndex,
                                           const NVMeDevice& device, CScanContext& context)
{
    adapter.m_Type = PI::TYPE_ADAPTER;
    adapter.m_DeviceIndex = deviceIndex;
    takeDescription(adapter, device, context.DriverVersion(device.driver));
    const bool isIntel = equalIgnoringCase(adapter.m_Vendor, "INTEL");
    if (isIntel)
        adapter.m_VendorTag = device.identifyController.sVendorTag();

    if (!context.m_PublishedAdapters || !carryIdentity(adapter, *context.m_PublishedAdapters))
        adapter.m_ID = NextObjectID();
    locate(adapter);
    if (context.m_Identities.Find(adapter) != nullptr)
        adapter.m_Name = adapterDisplayName(adapter.m_Vendor, adapter.m_SerialNumber);
    adapter.m_GlobalAdapterNumber = globalAdapterNumber(adapter);

    const TLXX::NVME_SMART_HEALTH_INFORMATION_LOG& health = device.smartHealthLog;
    const bool healthKnown = health.Filled();
    if (health.CompositeTemperature() != 0)
        adapter.m_Temperature = static_cast<float>(health.CompositeTemperature() - FREEZING_POINT);
    if (healthKnown)
        adapter.m_UnsafeShutdowns = health.Counter160[0];
    adapter.m_WarningFlags = health.CriticalWarning();
    if (isIntel) {
        TLXX::VendorLogPage page{};
        if (device.queryVendorLogPage(TLXX::INTEL_TEMPERATURE_STATISTIC_LOG_PAGE, page)) {
            OSTREL_TRACE(TRACE_PROGRESS) << "ScanSystem, getVendorSpecificLogPage: "
                                            "INTEL_TEMPERATURE_STATISTIC_LOG_PAGE for %s returned: %d"
                                         << device.deviceName << true;
        }
        adapter.m_WarningFlags |= temperatureWarnings(page);
    }
    applyCriticalWarning(adapter, health.CriticalWarning());
    if (isIntel) {
        TLXX::VendorLogPage page{};
        const bool answered = device.queryVendorLogPage(TLXX::INTEL_LEGACY_SMART_LOG_PAGE, page);
        if (answered) {
            OSTREL_TRACE(TRACE_PROGRESS)
                << "ScanSystem, getVendorSpecificLogPage: INTEL_LEGACY_SMART_LOG_PAGE for %s returned: %d"
                << device.deviceName << true;
        }
        // After a failed query the block has the last good page, if there was one.
        const bool wearKnown = answered || page != TLXX::VendorLogPage{};
        const std::uint32_t adNormalized = wearKnown ? page[27] : adapter.m_ADNormalized;
        const std::uint32_t eaNormalized = wearKnown ? page[99] : adapter.m_EANormalized;
        OSTREL_TRACE(TRACE_PROGRESS) << "ScanSystem, AD Normalized value = %d" << adNormalized;
        OSTREL_TRACE(TRACE_PROGRESS) << "ScanSystem, EA Normalized value = %d" << eaNormalized;
        if (wearKnown)
            applyWear(adapter, adNormalized, eaNormalized, health.CriticalWarning());
    }

    if (healthKnown) {
        adapter.m_DataUnitsRead = health.DataUnitsRead[0];
        adapter.m_DataUnitsWritten = health.DataUnitsWritten[0];
        adapter.m_PowerOnHours = health.Counter128[0];
        adapter.m_ReserveSpace = health.AvailableSpare;
        adapter.m_WarningThreshold = health.AvailableSpareThreshold;
    }
    OSTREL_TRACE(TRACE_PROGRESS) << "ScanSystem, DataUnitsRead = %d" << adapter.m_DataUnitsRead;
    OSTREL_TRACE(TRACE_PROGRESS) << "ScanSystem, DataUnitsWritten = %d" << adapter.m_DataUnitsWritten;
    OSTREL_TRACE(TRACE_PROGRESS) << "ScanSystem, PowerOnHours = %d" << adapter.m_PowerOnHours;
    OSTREL_TRACE(TRACE_PROGRESS) << "ScanSystem, ReserveSpace = %d" << adapter.m_ReserveSpace;
    OSTREL_TRACE(TRACE_PROGRESS) << "ScanSystem, WarningThreshold = %d" << adapter.m_WarningThreshold;
    adapter.m_LifetimeRating = context.LifetimeRating(adapter.m_Model);
    adapter.m_EndOfLifeDate = endOfLifeDate(adapter);
    return PI::ERR_SUCCESS;
}

} // namespace NAMESPACE_Ostrel
