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
 * A fleet file in the machine's place. Each enumeration looks at the file again, so drives come, go and
 * change when it is edited; while it is torn or wrong the fleet stays as it was, with one warning for each
 * change. Safe from any thread.
 *
 * A drive that hangs holds a command until the file is edited so that it answers, or is no longer there. The
 * caller must share this object for so long. A command that comes back to find another drive at its path
 * fails.
 */
class SimulatedFleet : public TLXX::IDeviceBackend
{
public:
    /** Throws `Failure` when the file cannot be read or is no fleet. */
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
    /** Device name and serial number. A drive that does not tell its own keeps that of the one before it. */
    std::string Instance(const std::string& path) override;
    std::optional<TLXX::CPciLocation> Location(std::uint32_t number) override;
    /** Does not look at the file again. */
    std::vector<TLXX::CControllerState> ControllerStates() override;
    std::string ModuleVersion(const std::string& driver) override;
    /** Announces edits of the file, where the system tells of them. */
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
        m_LastText;          ///< what the file held when it was last looked at; none: unreadable
    std::string m_Complaint; ///< about the file, not told yet
    std::vector<Controller> m_Controllers;
    std::chrono::steady_clock::time_point m_NextLook; ///< of a command that hangs
};

} // namespace Host
