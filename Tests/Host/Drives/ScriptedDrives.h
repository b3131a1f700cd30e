#pragma once

#include "Support/SilentBackend.h"
#include "Support/VirtualClock.h"

#include <TLX/Clock.h>
#include <TLXX/DriveSource.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <functional>
#include <limits>
#include <map>
#include <set>
#include <string>
#include <vector>

namespace HostTest {

/** One drive of a script. */
struct ScriptedDrive
{
    std::string m_Path;
    std::string m_Instance;
    std::uint64_t m_Delay = 0; ///< of each command, in milliseconds
    bool m_Hangs = false;
    std::map<TLXX::EQuery, std::uint32_t> m_Fails;
    std::uint16_t m_Maker = 0x1234;
    std::string m_Serial = "S";
};

/** A machine of scripted drives, whose commands take virtual time. For one thread, but for `Wake`. */
class ScriptedDrives : public TestSupport::CSilentBackend
{
public:
    /** Adds a drive with its path as its instance. */
    ScriptedDrive& add(const std::string& path)
    {
        ScriptedDrive& drive = m_Drives.emplace_back();
        drive.m_Path = path;
        drive.m_Instance = path;
        return drive;
    }
    ScriptedDrive& at(const std::string& path)
    {
        return *std::find_if(m_Drives.begin(), m_Drives.end(),
                             [&](const ScriptedDrive& drive) { return drive.m_Path == path; });
    }
    void remove(const std::string& path)
    {
        std::erase_if(m_Drives, [&](const ScriptedDrive& drive) { return drive.m_Path == path; });
    }

    /** Every drive's commands since the last call, by instance, such as "controller health". */
    std::map<std::string, std::string> takeAsked() { return std::exchange(m_Asked, {}); }

    /** The hanging commands of a drive come back now. */
    void letGo(const std::string& instance)
    {
        for (auto& [due, answer] : m_Pending)
            if (answer.m_Drive.m_Instance == instance)
                due = TLX::Misc::monotonic();
    }

    /** Called whenever the source waits. */
    std::function<void()> m_OnWait;

    std::vector<TLXX::CDeviceEntry> Enumerate(const TLXX::DeviceWalk&) override
    {
        std::vector<TLXX::CDeviceEntry> entries;
        for (const ScriptedDrive& drive : m_Drives)
            entries.push_back({drive.m_Path, "nvme"});
        return entries;
    }
    std::string Instance(const std::string& path) override
    {
        for (const ScriptedDrive& drive : m_Drives)
            if (drive.m_Path == path)
                return drive.m_Instance;
        return {};
    }
    std::optional<TLXX::CPciLocation> Location(std::uint32_t number) override
    {
        return TLXX::CPciLocation{0, static_cast<std::int32_t>(number), 0, 0};
    }
    std::vector<TLXX::CControllerState> ControllerStates() override
    {
        std::vector<TLXX::CControllerState> states;
        for (const ScriptedDrive& drive : m_Drives) {
            TLXX::CControllerState state;
            state.m_DeviceName = drive.m_Path;
            state.m_SerialNumber = drive.m_Serial + " of the system";
            state.m_AccessStatus = 13;
            state.m_Model = "Model of the system";
            states.push_back(state);
        }
        return states;
    }

    /** The source that asks these drives. */
    std::unique_ptr<TLXX::IDriveSource> source() { return std::make_unique<Source>(*this); }

private:
    static constexpr std::uint64_t NEVER = std::numeric_limits<std::uint64_t>::max();

    class Source : public TLXX::IDriveSource
    {
    public:
        explicit Source(ScriptedDrives& drives) : m_Drives(drives) {}
        void Submit(const TLXX::CDriveAddress& drive,
                    const std::vector<TLXX::CDriveCommand>& commands) override
        {
            m_Drives.submit(drive, commands);
        }
        std::optional<TLXX::CDriveAnswer> Wait(std::uint64_t until) override { return m_Drives.wait(until); }
        void Wake() override { m_Drives.m_Woken = true; }

    private:
        ScriptedDrives& m_Drives;
    };

    static std::string nameOf(const TLXX::CDriveCommand& command)
    {
        switch (command.m_Query) {
        case TLXX::EQuery::IdentifyController:
            return "controller";
        case TLXX::EQuery::IdentifyNamespace:
            return "namespace";
        case TLXX::EQuery::SmartHealthLog:
            return "health";
        case TLXX::EQuery::VendorLog:
            break;
        }
        return "log" + std::to_string(command.m_LogIdentifier);
    }

    static std::vector<std::uint8_t> blockOf(const ScriptedDrive& drive, const TLXX::CDriveCommand& command)
    {
        if (command.m_Query == TLXX::EQuery::IdentifyController) {
            TLXX::NVME_IDENTIFY_CONTROLLER controller{};
            controller.VID = drive.m_Maker;
            std::copy(drive.m_Serial.begin(), drive.m_Serial.end(), controller.SN.begin());
            std::vector<std::uint8_t> bytes(sizeof controller);
            std::memcpy(bytes.data(), &controller, sizeof controller);
            return bytes;
        }
        return std::vector<std::uint8_t>(command.m_Query == TLXX::EQuery::IdentifyNamespace ? 4096 : 512,
                                         static_cast<std::uint8_t>(drive.m_Serial[0]));
    }

    void submit(const TLXX::CDriveAddress& address, const std::vector<TLXX::CDriveCommand>& commands)
    {
        for (const auto& [due, answer] : m_Pending)
            EXPECT_NE(answer.m_Drive.m_Instance, address.m_Instance) << "it owes an answer";
        std::uint64_t due = TLX::Misc::monotonic();
        for (const TLXX::CDriveCommand& command : commands) {
            std::string& asked = m_Asked[address.m_Instance];
            asked += (asked.empty() ? "" : " ") + nameOf(command);
            const auto drive = std::find_if(m_Drives.begin(), m_Drives.end(), [&](const auto& candidate) {
                return candidate.m_Path == address.m_Path && candidate.m_Instance == address.m_Instance;
            });
            if (drive == m_Drives.end()) {
                m_Pending.push_back({due, {address, command, TLXX::STATUS_NO_DEVICE, {}}});
                continue;
            }
            due = drive->m_Hangs ? NEVER : due + drive->m_Delay;
            const auto failure = drive->m_Fails.find(command.m_Query);
            if (failure != drive->m_Fails.end())
                m_Pending.push_back({due, {address, command, failure->second, {}}});
            else
                m_Pending.push_back({due, {address, command, 0, blockOf(*drive, command)}});
        }
    }

    std::optional<TLXX::CDriveAnswer> wait(std::uint64_t until)
    {
        if (m_OnWait)
            m_OnWait();
        const auto first = std::min_element(m_Pending.begin(), m_Pending.end(),
                                            [](const auto& a, const auto& b) { return a.first < b.first; });
        if (first != m_Pending.end() && first->first <= until && first->first != NEVER) {
            TLX::Misc::clock().SleepUntil(first->first);
            TLXX::CDriveAnswer answer = std::move(first->second);
            m_Pending.erase(first);
            return answer;
        }
        if (until > TLX::Misc::monotonic() && std::exchange(m_Woken, false))
            return std::nullopt;
        if (until == NEVER)
            throw std::logic_error("waits for ever");
        TLX::Misc::clock().SleepUntil(until);
        return std::nullopt;
    }

    std::vector<ScriptedDrive> m_Drives;
    std::map<std::string, std::string> m_Asked;
    std::vector<std::pair<std::uint64_t, TLXX::CDriveAnswer>> m_Pending; ///< with the instant of each
    bool m_Woken = false;
};

} // namespace HostTest
