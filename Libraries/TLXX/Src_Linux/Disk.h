#pragma once

#include "DeviceTable.h"
#include "FileDescriptor.h"

#include <TLXX/NvmeStructures.h>

#include <cstdint>
#include <optional>
#include <string>

namespace TLXX::Platform {

/** A disk that is open for queries, which keep to the contract of `NvmeQuery.h`. For use by one thread. */
class CDisk
{
public:
    /** Opens the controller that owns the disk at `path`. */
    explicit CDisk(const std::string& path);

    /** 0, or the reason why it could not be opened; every query of such a disk returns the same. */
    std::uint32_t Status() const { return m_Node.Status(); }

    /** Distinguishes the controller and its namespace from all others; empty when there are none. */
    const std::string& Instance() const { return m_Instance; }

    std::uint32_t IdentifyController(NVME_IDENTIFY_CONTROLLER& controller);
    std::uint32_t IdentifyNamespace(NVME_IDENTIFY_NAMESPACE& name_space);
    std::uint32_t SmartHealthLog(NVME_SMART_HEALTH_INFORMATION_LOG& log);
    std::uint32_t VendorLogPage(std::uint8_t logIdentifier, TLXX::VendorLogPage& page);

private:
    explicit CDisk(const std::optional<Linux::CDiskOwner>& owner);

    std::string m_Instance;
    std::uint32_t m_NamespaceId = 0;
    Linux::CFileDescriptor m_Node;
};

} // namespace TLXX::Platform
