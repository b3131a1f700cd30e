#include "Ostrel/NVMeDevices.h"
#include "Ostrel/Trace.h"

#include <TLXX/Linux/Sysfs.h>

#include <utility>

namespace NAMESPACE_Ostrel {

void NVMeDevices::scanDeviceTree()
{
    for (TLXX::CDeviceEntry& entry : TLXX::Linux::enumerateDevices())
        addDetected(std::move(entry.m_DeviceName), std::move(entry.m_Driver));
}

void NVMeDevices::addDetected(std::string device, std::string service)
{
    const NVMeDevice& added = emplace_back(std::move(device), std::move(service));
    OSTREL_TRACE(TRACE_PROGRESS) << "Detected NVMe device. deviceName: %s, driver: %s" << added.deviceName
                                 << added.driver;
}

} // namespace NAMESPACE_Ostrel
