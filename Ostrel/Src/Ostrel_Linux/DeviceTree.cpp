#include "Records/DeviceTree.h"

#include <TLXX/Linux/Sysfs.h>

namespace NAMESPACE_Ostrel {

std::vector<TLXX::CDeviceEntry> walkDeviceTree()
{
    return TLXX::Linux::enumerateDevices();
}

} // namespace NAMESPACE_Ostrel
