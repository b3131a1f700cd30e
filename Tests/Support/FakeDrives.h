#pragma once

#include "Support/Announcer.h"

#include <TLXX/DeviceBackend.h>

#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace TestSupport {

/** One scripted controller: its answers, and the statuses that it returns before it answers. */
struct CFakeDrive
{
    /** A healthy drive of 1 GiB in 512-byte blocks at 25 degrees, without a known maker, at PCI bus `number`.
     */
    explicit CFakeDrive(std::uint32_t number);

    CFakeDrive& Vendor(std::uint16_t vendorId);
    CFakeDrive& Serial(std::string_view text);
    CFakeDrive& Model(std::string_view text);
    CFakeDrive& Firmware(std::string_view text);
    /** The 8 bytes from 3100 of the identify data. */
    CFakeDrive& Tag(std::string_view text);
    CFakeDrive& Warning(std::uint8_t bits);
    CFakeDrive& Kelvin(std::uint16_t temperature);
    /** The bytes of vendor log 0xC5 that the temperature statistics come from. */
    CFakeDrive& TemperatureLog(std::uint8_t byte0, std::uint8_t byte104);
    /** The normalized values of attributes 0xAD and 0xEA in vendor log 0xCA. */
    CFakeDrive& LegacyLog(std::uint8_t ad, std::uint8_t ea);
    /** The text at the beginning of vendor log 0xDD. */
    CFakeDrive& MarketingLog(std::string_view text);

    std::string m_DeviceName;
    std::string m_Driver = "nvme";
    std::string m_DriverVersion = "6.1";
    std::optional<TLXX::CPciLocation> m_Location;
    std::optional<std::string> m_Instance; ///< none: the device's name
    TLXX::NVME_IDENTIFY_CONTROLLER m_Controller{};
    TLXX::NVME_IDENTIFY_NAMESPACE m_Namespace{};
    TLXX::NVME_SMART_HEALTH_INFORMATION_LOG m_Health{};
    std::map<std::uint8_t, TLXX::VendorLogPage> m_VendorLogs; ///< a missing log fails

    // Statuses that the next queries return; a 0 lets a query succeed. Empty: every query succeeds.
    std::deque<std::uint32_t> m_ControllerStatuses;
    std::deque<std::uint32_t> m_NamespaceStatuses;
    std::deque<std::uint32_t> m_HealthStatuses;
};

/** Replaces the machine's drives by scripted controllers while it lives. Safe from any thread. */
class CFakeDrives
{
public:
    CFakeDrives();
    ~CFakeDrives();
    CFakeDrives(const CFakeDrives&) = delete;
    CFakeDrives& operator=(const CFakeDrives&) = delete;

    /** Adds a drive after the others. The reference is valid until the next change of the list. */
    CFakeDrive& Add(CFakeDrive drive);
    /** Removes the drive with this device name from the machine. */
    void Remove(const std::string& deviceName);
    CFakeDrive& At(std::size_t index);
    /** Changes a drive while other threads may query it. */
    void Change(std::size_t index, const std::function<void(CFakeDrive&)>& change);

    /**
     * Sets a function that is called, on the querying thread, before each query with the text that `Queries`
     * has for it, and before each enumeration with "enumerate". Its exceptions pass through to the plug-in.
     */
    void OnQuery(std::function<void(const std::string& query)> action);

    /**
     * From now on subscribers hear what `announcer` announces. Without an announcer, a subscription fails.
     */
    void AnnounceBy(CAnnouncer& announcer);

    /** Every query so far as "<kind> <device name>": "controller", "namespace", "health", "log 0xC5" ... */
    std::vector<std::string> Queries() const;

private:
    class CBackend;
    std::shared_ptr<CBackend> m_Backend;
    std::shared_ptr<TLXX::IDeviceBackend> m_Former;
};

} // namespace TestSupport
