#pragma once

#include "Ostrel/HostCodes.h"
#include "OstrelAdapter/Record.h"

#include <PI/Object.h>

#include <cstdint>
#include <limits>
#include <string>

namespace NAMESPACE_Ostrel {

/** The disk behind one NVMe controller. The scan fills it; what the scan does not know keeps the defaults. */
class CNVMePhysicalDrive : public PI::CObject
{
public:
    std::uint32_t m_DeviceIndex = std::numeric_limits<std::uint32_t>::max();
    std::string m_SerialNumber;
    std::string m_Vendor;
    std::string m_Model;
    std::string m_ProductName; ///< display name
    std::string m_Location;    ///< the adapter's location and "&ID=0"
    std::string m_DeviceName;
    std::uint32_t m_Status = DRIVE_ONLINE;
    std::uint32_t m_BlockSize = 512; ///< bytes of a logical block
    std::uint64_t m_ReservedMiB = 0;
    std::uint32_t m_ReservedPercent = 100;
    std::uint64_t m_CapacityMiB = 0;
    std::uint64_t m_UsableCapacityMiB = 0;
    float m_Temperature = UNKNOWN_TEMPERATURE; ///< degrees Celsius, the adapter's
};

} // namespace NAMESPACE_Ostrel
