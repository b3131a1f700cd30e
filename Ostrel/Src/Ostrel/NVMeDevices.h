#pragma once

#include <TLXX/NvmeStructures.h>

#include <cstdint>
#include <functional>
#include <string>
#include <vector>

namespace NAMESPACE_Ostrel {

/** One enumerated disk and what it last said of itself. The blocks are zero until they are queried. */
class NVMeDevice
{
public:
    NVMeDevice(std::string device, std::string service);

    std::string deviceName; ///< path of the disk
    std::string driver;     ///< driver of its controller
    TLXX::NVME_IDENTIFY_CONTROLLER identifyController{};
    TLXX::NVME_IDENTIFY_NAMESPACE identifyNamespace{};
    TLXX::NVME_SMART_HEALTH_INFORMATION_LOG smartHealthLog{};

    // Each asks the drive, blocks until it answers, and returns whether the whole block came. Otherwise the
    // block holds the last good one that `TLXX/NvmeQuery.h` has kept, or stays as it was.
    bool queryIdentifyController();
    bool queryIdentifyNamespace();
    bool querySmartHealthLog();
    bool queryVendorLogPage(std::uint8_t logIdentifier, TLXX::VendorLogPage& page) const;
};

/** The machine's NVMe disks in discovery order. Takes no lock; callers serialise their use. */
class NVMeDevices : public std::vector<NVMeDevice>
{
public:
    /**
     * Lists the disks anew; whatever the old elements had queried is gone. Returns whether there is any.
     * The list is empty when it throws.
     */
    bool scan();

    /**
     * Asks each disk in turn for its namespace and its health log, once `isReady` lets it. Returns false at
     * the first disk for which `isReady` fails; neither that one nor any after it is asked.
     */
    bool query(const std::function<bool(NVMeDevice&)>& isReady);

private:
    /** Appends an element and traces what was found. */
    void addDetected(std::string device, std::string service);
};

} // namespace NAMESPACE_Ostrel
