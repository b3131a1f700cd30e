#include "Ostrel/NVMeDevices.h"

#include <TLXX/Linux/Sysfs.h>

#include <utility>
#include <vector>

namespace NAMESPACE_Ostrel {

void NVMeDevices::scanDeviceTree()
{
    std::vector<TLXX::CDeviceEntry> entries = TLXX::Linux::enumerateDevices();
    reserve(entries.size());
    for (TLXX::CDeviceEntry& entry : entries)
        addDetected(std::move(entry.m_DeviceName), std::move(entry.m_Driver));
}

} // namespace NAMESPACE_Ostrel
