#pragma once

#include <TLXX/DeviceBackend.h>

#include <vector>

namespace NAMESPACE_Ostrel {

/** The machine's NVMe disks in the order of its device tree. Each system has its own implementation. */
std::vector<TLXX::CDeviceEntry> walkDeviceTree();

} // namespace NAMESPACE_Ostrel
