#include "Ostrel/NVMeDevices.h"

#include "Records/DeviceTree.h"
#include "Records/Trace.h"

#include <TLXX/DeviceBackend.h>
#include <TLXX/NvmeQuery.h>

#include <utility>

namespace NAMESPACE_Ostrel {

NVMeDevice::NVMeDevice(std::string device, std::string service)
    : deviceName(std::move(device)), driver(std::move(service))
{}

bool NVMeDevice::queryIdentifyController()
{
    return TLXX::NVMeStorageQueryPropertyIdentifyController(deviceName, identifyController) == 0;
}

bool NVMeDevice::queryIdentifyNamespace()
{
    return TLXX::NVMeStorageQueryPropertyIdentifyNamespace(deviceName, identifyNamespace) == 0;
}

bool NVMeDevice::querySmartHealthLog()
{
    return TLXX::NVMeStorageQueryPropertyGetLogPageSMARTHealthInfo(deviceName, smartHealthLog) == 0;
}

bool NVMeDevice::queryVendorLogPage(std::uint8_t logIdentifier, TLXX::VendorLogPage& page) const
{
    return TLXX::NVMeStorageQueryPropertyGetVendorSpecificLogPage(deviceName, logIdentifier, page) == 0;
}

bool NVMeDevices::scan()
{
    OSTREL_TRACE(TRACE_FLOW) << "ENTER NVMeDevices::scan()";
    const auto leave = [this] {
        const bool found = !empty();
        OSTREL_TRACE(TRACE_FLOW) << "LEAVE NVMeDevices::scan() -> ret %d" << found;
        return found;
    };
    clear();
    try {
        for (TLXX::CDeviceEntry& entry : TLXX::enumerateBackend(walkDeviceTree))
            addDetected(std::move(entry.m_DeviceName), std::move(entry.m_Driver));
    } catch (...) {
        clear();
        leave();
        throw;
    }
    return leave();
}

bool NVMeDevices::query(const std::function<bool(NVMeDevice&)>& isReady)
{
    for (NVMeDevice& device : *this) {
        const TLXX::CQuerySession session(device.deviceName);
        if (!isReady(device))
            return false;
        // A block that was not read stays as it was. A block that was never read is zero, which the scan
        // takes for unknown.
        (void)device.queryIdentifyNamespace();
        (void)device.querySmartHealthLog();
    }
    return true;
}

void NVMeDevices::addDetected(std::string device, std::string service)
{
    const NVMeDevice& added = emplace_back(std::move(device), std::move(service));
    OSTREL_TRACE(TRACE_PROGRESS) << "Detected NVMe device. deviceName: %s, driver: %s" << added.deviceName
                                 << added.driver;
}

} // namespace NAMESPACE_Ostrel
