#pragma once

#include <TLXX/Diagnosis.h>
#include <TLXX/NvmeStructures.h>
#include <TLXX/PciLocation.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

// What each operating system supplies, in a folder of its own. The public functions ask these when no
// back-end stands in the machine's place, and give them the same contract.
namespace TLXX::Platform {

std::uint32_t identifyController(const std::string& path, NVME_IDENTIFY_CONTROLLER& controller);
std::uint32_t identifyNamespace(const std::string& path, NVME_IDENTIFY_NAMESPACE& name_space);
std::uint32_t smartHealthLog(const std::string& path, NVME_SMART_HEALTH_INFORMATION_LOG& log);
std::uint32_t vendorLogPage(const std::string& path, std::uint8_t logIdentifier, VendorLogPage& page);

/** The location of the `number`-th controller of the last enumeration, counted from 1. */
std::optional<CPciLocation> location(std::uint32_t number);

std::string moduleVersion(const std::string& module);

std::vector<CControllerState> controllerStates();

} // namespace TLXX::Platform
