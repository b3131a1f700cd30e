#pragma once

#include "Records/Adapter.h"

#include <PI/Event.h>
#include <PI/Object.h>
#include <PI/StateCode.h>

#include <cstdint>
#include <limits>
#include <string>
#include <vector>

namespace NAMESPACE_Ostrel {

/**
 * What is known of the disk of one NVMe controller. Members that the scan cannot fill keep their defaults.
 */
struct CNVMePhysicalDriveData
{
    std::uint32_t m_DeviceIndex = std::numeric_limits<std::uint32_t>::max();
    std::string m_SerialNumber;
    std::string m_Vendor;
    std::string m_Model;
    std::string m_ProductName; ///< display name
    std::string m_Location;    ///< the adapter's location and "&ID=0"
    std::string m_DeviceName;
    std::uint32_t m_Status = PI::DRIVE_OPERATIONAL;
    std::uint32_t m_BlockSize = 512; ///< bytes of a logical block
    std::uint64_t m_ReservedMiB = 0;
    std::uint32_t m_ReservedPercent = 100;
    std::uint64_t m_CapacityMiB = 0;
    std::uint64_t m_UsableCapacityMiB = 0;
    float m_Temperature = UNKNOWN_TEMPERATURE; ///< degrees Celsius, copied from the adapter

    friend bool operator==(const CNVMePhysicalDriveData&, const CNVMePhysicalDriveData&) = default;
};

/** The disk of one NVMe controller in the topology. */
class CNVMePhysicalDrive : public PI::CObject, public CNVMePhysicalDriveData
{
public:
    /**
     * Appends an event to `events` when the disk has changed in a member that its data depend on. Otherwise
     * only counts the change. `adapter` is the one that owns `fresh`.
     */
    void Update(const CNVMePhysicalDrive& fresh, const CNVMeAdapter& adapter,
                std::vector<PI::CEvent>& events);

    /** Whether both have the same data, whatever their places in the topology. */
    friend bool operator==(const CNVMePhysicalDrive& left, const CNVMePhysicalDrive& right)
    {
        return static_cast<const CNVMePhysicalDriveData&>(left) ==
               static_cast<const CNVMePhysicalDriveData&>(right);
    }
};

} // namespace NAMESPACE_Ostrel
