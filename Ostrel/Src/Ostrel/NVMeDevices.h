#pragma once

#include <TLXX/NvmeStructures.h>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace NAMESPACE_Ostrel {

/** One enumerated disk and its last answers. The blocks are zero until they are queried. */
class NVMeDevice
{
public:
    NVMeDevice(std::string device, std::string service);

    std::string deviceName; ///< path of the disk
    std::string driver;     ///< driver of its controller
    TLXX::NVME_IDENTIFY_CONTROLLER identifyController{};
    TLXX::NVME_IDENTIFY_NAMESPACE identifyNamespace{};
    TLXX::NVME_SMART_HEALTH_INFORMATION_LOG smartHealthLog{};

    // Each function asks the drive, blocks until it answers, and returns whether the whole block came.
    // Otherwise the block has the last good answer that `TLXX/NvmeQuery.h` keeps, or stays as it was.
    bool queryIdentifyController();
    bool queryIdentifyNamespace();
    bool querySmartHealthLog();
    bool queryVendorLogPage(std::uint8_t logIdentifier, TLXX::VendorLogPage& page) const;
};

/** The machine's NVMe disks in discovery order. Takes no lock; callers must serialise their use. */
class NVMeDevices : public std::vector<NVMeDevice>
{
public:
    /**
     * Lists the disks anew and discards the answers of the old elements. Returns whether there are any disks.
     * The list is empty when it throws.
     */
    bool scan();

    /**
     * Asks each disk in turn for its namespace and its health log. Calls `isReady` before each disk. Returns
     * false at the first disk for which `isReady` fails, and asks neither that one nor any after it.
     */
    bool query(const std::function<bool(NVMeDevice&)>& isReady);

private:
    /** Appends an element and traces it. */
    void addDetected(std::string device, std::string service);
};

} // namespace NAMESPACE_Ostrel
