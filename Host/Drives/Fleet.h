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

/**
 * One simulated controller and its disk. The drive does not answer queries for a block that is missing here.
 */
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
    bool m_Hangs = false;                 ///< no command is ever answered
    std::set<TLXX::EQuery> m_Fails;       ///< the drive refuses these commands
};

/**
 * The controllers in the text of a fleet file, in its order. Throws `std::runtime_error` for anything
 * unknown, missing or out of range. The message names the place and what is expected there.
 */
std::vector<SimulatedController> parseFleet(std::string_view text);

} // namespace Host
