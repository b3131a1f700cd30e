#include "Ostrel/NVMeDevices.h"

#include <TLXX/Linux/Sysfs.h>

#include <utility>

namespace NAMESPACE_Ostrel {

void NVMeDevices::scanDeviceTree()
{
    for (TLXX::CDeviceEntry& entry : TLXX::Linux::enumerateDevices())
        addDetected(std::move(entry.m_DeviceName), std::move(entry.m_Driver));
}

} // namespace NAMESPACE_Ostrel
