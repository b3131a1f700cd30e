#pragma once

#include <TLXX/DeviceBackend.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace TestSupport {

/** A machine without drives that refuses every query and announces nothing. Tests override what they need. */
class CSilentBackend : public TLXX::IDeviceBackend
{
public:
    std::vector<TLXX::CDeviceEntry> Enumerate(const TLXX::DeviceWalk&) override { return {}; }
    std::uint32_t IdentifyController(const std::string&, TLXX::NVME_IDENTIFY_CONTROLLER&) override
    {
        return 1;
    }
    std::uint32_t IdentifyNamespace(const std::string&, TLXX::NVME_IDENTIFY_NAMESPACE&) override { return 1; }
    std::uint32_t SmartHealthLog(const std::string&, TLXX::NVME_SMART_HEALTH_INFORMATION_LOG&) override
    {
        return 1;
    }
    std::uint32_t VendorLogPage(const std::string&, std::uint8_t, TLXX::VendorLogPage&) override { return 1; }
    std::optional<TLXX::CPciLocation> Location(std::uint32_t) override { return std::nullopt; }
    std::string ModuleVersion(const std::string&) override { return {}; }
};

} // namespace TestSupport
