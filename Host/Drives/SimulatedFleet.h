#pragma once

#include "Base/Warn.h"
#include "Drives/Fleet.h"

#include <TLXX/DeviceBackend.h>

#include <chrono>
#include <condition_variable>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <vector>

namespace Host {

/**
 * Shows the drives of a fleet file in place of the machine's. Each enumeration reads the file again, so
 * editing it makes drives come, go and change. While the file is wrong or half written, the fleet stays as it
 * was, and each wrong content is warned of once. Safe from any thread.
 *
 * A command to a drive that hangs does not return until an edit of the file ends the hang or removes the
 * drive. The caller must share this object for that long. The command fails if another drive is then at its
 * path.
 */
class SimulatedFleet : public TLXX::IDeviceBackend
{
public:
    /** Throws `Failure` when the file cannot be read or describes no fleet. */
    SimulatedFleet(std::filesystem::path file, Warn warn);

    const std::filesystem::path& file() const { return m_File; }

    std::vector<TLXX::CDeviceEntry> Enumerate(const TLXX::DeviceWalk& walk) override;
    std::uint32_t IdentifyController(const std::string& path,
                                     TLXX::NVME_IDENTIFY_CONTROLLER& controller) override;
    std::uint32_t IdentifyNamespace(const std::string& path,
                                    TLXX::NVME_IDENTIFY_NAMESPACE& name_space) override;
    std::uint32_t SmartHealthLog(const std::string& path,
                                 TLXX::NVME_SMART_HEALTH_INFORMATION_LOG& log) override;
    std::uint32_t VendorLogPage(const std::string& path, std::uint8_t logIdentifier,
                                TLXX::VendorLogPage& page) override;
    /** Device name and serial number. A drive without a serial number keeps that of the drive before it. */
    std::string Instance(const std::string& path) override;
    std::optional<TLXX::CPciLocation> Location(std::uint32_t number) override;
    /** Does not read the file again. */
    std::vector<TLXX::CControllerState> ControllerStates() override;
    std::string ModuleVersion(const std::string& driver) override;
    /** Reports edits of the file, if the system supports that. */
    std::unique_ptr<TLXX::IAnnouncements> Subscribe(std::function<void()> announce) override;

private:
    struct Controller : SimulatedController
    {
        std::string m_Instance;
    };

    const Controller* find(const std::string& path) const;
    void take(std::vector<SimulatedController> controllers);
    void lookAgain();
    const Controller* awaitTurn(std::unique_lock<std::mutex>& guard, const std::string& path);

    template<typename Fetch>
    std::uint32_t answer(const std::string& path, TLXX::EQuery query, const Fetch& fetch);

    const std::filesystem::path m_File;
    const Warn m_Warn;
    std::mutex m_Lock;
    std::condition_variable m_Changed;
    // Under m_Lock.
    std::optional<std::string>
        m_LastText;          ///< the file's content at the last look; none: it could not be read
    std::string m_Complaint; ///< about the file; no warning was given yet
    std::vector<Controller> m_Controllers;
    std::chrono::steady_clock::time_point m_NextLook; ///< of a command that hangs
};

} // namespace Host
