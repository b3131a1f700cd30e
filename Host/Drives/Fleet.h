#pragma once

#include <TLXX/NvmeQuery.h>
#include <TLXX/NvmeStructures.h>
#include <TLXX/PciLocation.h>

#include <chrono>
#include <cstdint>
#include <map>
#include <optional>
#include <set>
#include <string>
#include <string_view>
#include <vector>

namespace Host {

/** One simulated controller and its disk. A block that is not there is one that the drive does not answer. */
struct SimulatedController
{
    std::string m_DeviceName;
    std::string m_Driver;
    std::string m_DriverVersion;
    std::optional<TLXX::CPciLocation> m_Location;
    std::optional<TLXX::NVME_IDENTIFY_CONTROLLER> m_Identify;
    std::optional<TLXX::NVME_IDENTIFY_NAMESPACE> m_Namespace;
    std::optional<TLXX::NVME_SMART_HEALTH_INFORMATION_LOG> m_Health;
    std::map<std::uint8_t, TLXX::VendorLogPage> m_VendorLogs;
    std::chrono::milliseconds m_Delay{0}; ///< before each answer
    bool m_Hangs = false;                 ///< no command comes back
    std::set<TLXX::EQuery> m_Fails;       ///< the drive refuses these commands
};

/**
 * The controllers that the text of a fleet file describes, in its order. Throws `std::runtime_error`, naming
 * the place and what belongs there, for anything that it does not know, misses, or that lies out of range.
 */
std::vector<SimulatedController> parseFleet(std::string_view text);

} // namespace Host
