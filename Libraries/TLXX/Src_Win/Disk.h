#pragma once

#include <TLXX/NvmeStructures.h>
#include <TLXX/Win/DeviceFile.h>

#include <cstdint>
#include <string>

namespace TLXX::Platform {

/** A disk that is open for queries, which keep to the contract of `NvmeQuery.h`. For use by one thread. */
class CDisk
{
public:
    /** Opens the disk at `path`. */
    explicit CDisk(const std::string& path);

    /** 0, or the reason why it could not be opened; every query of such a disk returns the same. */
    std::uint32_t Status() const { return m_Device.Status(); }

    /** Distinguishes the disk from all others; empty when no enumeration has found it. */
    const std::string& Instance() const { return m_Instance; }

    std::uint32_t IdentifyController(NVME_IDENTIFY_CONTROLLER& controller);
    std::uint32_t IdentifyNamespace(NVME_IDENTIFY_NAMESPACE& name_space);
    std::uint32_t SmartHealthLog(NVME_SMART_HEALTH_INFORMATION_LOG& log);
    std::uint32_t VendorLogPage(std::uint8_t logIdentifier, TLXX::VendorLogPage& page);

private:
    const std::string m_Instance;
    Win::CDeviceFile m_Device;
};

} // namespace TLXX::Platform
