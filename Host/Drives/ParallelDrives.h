#pragma once

#include "Drives/DriveAnswer.h"
#include "Drives/DriveRounds.h"

#include <TLX/Event.h>
#include <TLXX/DeviceBackend.h>
#include <TLXX/DriveSource.h>

#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <span>
#include <string>
#include <unordered_map>
#include <vector>

namespace Host {

/** Whose permissions decide which drives can be asked. */
enum class Rights : std::uint8_t
{
    Own,     ///< those of this user
    Readers, ///< those of a process that asks on this user's behalf
};

/**
 * Reads all drives of a machine side by side, so that one silent drive hides no other. Each enumeration is a
 * round: it asks every drive for what the plug-in asked last time, and the plug-in's queries are answered
 * from the round. A drive that has answered once stays enumerated: while it is silent or fails, Identify
 * Controller and the vendor logs are its last good ones, and its other queries fail. A drive that has never
 * answered is left out. A command that has not come back gets no second one after it. Safe from any thread.
 */
class ParallelDrives : public TLXX::IDeviceBackend
{
public:
    /**
     * `machine` enumerates, and `source` asks its drives with these rights. Throws `std::runtime_error` when
     * the system gives no event.
     */
    ParallelDrives(std::shared_ptr<TLXX::IDeviceBackend> machine, std::unique_ptr<TLXX::IDriveSource> source,
                   Rights rights = Rights::Own);

    /** What the last round found. Waits for no drive. */
    DriveRound lastRound() const;

    /** The number of the last round. Costs less than `lastRound`. */
    std::uint64_t lastNumber() const;

    /** An auto-reset event that is set when a round has ended, or a drive falls silent after it. */
    TLX::Threading::CEvent& roundEnded() { return m_RoundEnded; }

    /** Ends every wait for a drive, now and later. Rounds end at once, and queries without an answer fail. */
    void stopWaiting() { m_Rounds.stopWaiting(); }

    std::vector<TLXX::CDeviceEntry> Enumerate(const TLXX::DeviceWalk& walk) override;
    std::uint32_t IdentifyController(const std::string& path,
                                     TLXX::NVME_IDENTIFY_CONTROLLER& controller) override;
    std::uint32_t IdentifyNamespace(const std::string& path,
                                    TLXX::NVME_IDENTIFY_NAMESPACE& name_space) override;
    std::uint32_t SmartHealthLog(const std::string& path,
                                 TLXX::NVME_SMART_HEALTH_INFORMATION_LOG& log) override;
    std::uint32_t VendorLogPage(const std::string& path, std::uint8_t logIdentifier,
                                TLXX::VendorLogPage& page) override;
    std::string Instance(const std::string& path) override;
    std::optional<TLXX::CPciLocation> Location(std::uint32_t number) override;
    /** Those of the machine. With a reader's rights nothing is refused to this user. */
    std::vector<TLXX::CControllerState> ControllerStates() override;
    std::string ModuleVersion(const std::string& driver) override;
    std::unique_ptr<TLXX::IAnnouncements> Subscribe(std::function<void()> announce) override;

private:
    /** A disk of the last enumeration. */
    struct Disk
    {
        TLXX::CDeviceEntry m_Entry;
        std::string m_Instance;
        std::optional<TLXX::CPciLocation> m_Location;
    };

    /** What the system says of a drive that has never answered. */
    struct Identity
    {
        std::string m_SerialNumber;
        std::string m_Model;
        std::string m_FirmwareRevision;
    };

    // These are called with m_Lock held.
    void walkMachine(const TLXX::DeviceWalk& walk);
    std::string instanceAt(const std::string& path);
    DriveAnswer answerOf(const Disk& disk, const DriveRecord& record) const;
    void learnIdentities();
    void publish(std::uint64_t number);

    std::uint32_t query(const std::string& path, const TLXX::CDriveCommand& command,
                        std::span<std::uint8_t> block);

    const std::uint64_t m_Number;
    const std::shared_ptr<TLXX::IDeviceBackend> m_Machine;
    const Rights m_Rights;
    TLX::Threading::CEvent m_RoundEnded;

    std::mutex m_Lock;    ///< held while a round or a query waits for drives
    DriveRounds m_Rounds; ///< guarded by m_Lock, but for `stopWaiting`
    std::vector<Disk> m_Disks;
    std::unordered_map<std::string, std::string> m_Instances; ///< by path, of these disks
    std::unordered_map<std::string, Identity> m_Identities;   ///< by instance

    std::uint64_t m_Duration = 0; ///< of the last round

    mutable std::mutex m_PublishedLock; ///< taken after m_Lock
    DriveRound m_Published;
};

} // namespace Host
