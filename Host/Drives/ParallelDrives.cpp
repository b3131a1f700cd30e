#include "Drives/ParallelDrives.h"

#include <TLX/Clock.h>

#include <atomic>
#include <exception>
#include <stdexcept>
#include <type_traits>
#include <utility>

namespace Host {
namespace {

using TLXX::CDriveCommand;
using TLXX::EQuery;

/** The locations of the last enumeration of this thread, and whose enumeration it was. */
struct Locations
{
    std::uint64_t m_Owner = 0;
    std::vector<std::optional<TLXX::CPciLocation>> m_Places;
};

thread_local Locations t_Locations;

/** Distinguishes an object from all others, also from a former one at the same address. */
std::uint64_t uniqueNumber()
{
    static std::atomic<std::uint64_t> last = 0;
    return ++last;
}

template<typename Block>
std::span<std::uint8_t> bytesOf(Block& block)
{
    static_assert(std::is_trivially_copyable_v<Block>);
    return {reinterpret_cast<std::uint8_t*>(&block), sizeof block};
}

/** None when the system cannot tell now. A round must not be lost because of a name. */
std::vector<TLXX::CControllerState> controllersNow(TLXX::IDeviceBackend& machine)
{
    try {
        return machine.ControllerStates();
    } catch (const std::exception&) {
        return {};
    }
}

} // namespace

ParallelDrives::ParallelDrives(std::shared_ptr<TLXX::IDeviceBackend> machine,
                               std::unique_ptr<TLXX::IDriveSource> source, Rights rights)
    : m_Number(uniqueNumber()), m_Machine(std::move(machine)), m_Rights(rights), m_Rounds(std::move(source))
{
    if (m_RoundEnded.Init(false, false) != TLX::Threading::WaitResult::Taken)
        throw std::runtime_error("no event for the rounds of drives");
}

DriveRound ParallelDrives::lastRound() const
{
    const std::scoped_lock guard(m_PublishedLock);
    return m_Published;
}

std::uint64_t ParallelDrives::lastNumber() const
{
    const std::scoped_lock guard(m_PublishedLock);
    return m_Published.m_Number;
}

std::vector<TLXX::CDeviceEntry> ParallelDrives::Enumerate(const TLXX::DeviceWalk& walk)
{
    const std::scoped_lock guard(m_Lock);
    walkMachine(walk);
    std::vector<TLXX::CDriveAddress> drives;
    drives.reserve(m_Disks.size());
    for (const Disk& disk : m_Disks)
        drives.push_back({disk.m_Entry.m_DeviceName, disk.m_Instance});
    const std::uint64_t began = TLX::Misc::monotonic();
    m_Rounds.read(drives);
    m_Duration = TLX::Misc::monotonic() - began;
    learnIdentities();
    if (!m_Rounds.stopped())
        publish(m_Published.m_Number + 1);

    std::vector<TLXX::CDeviceEntry> entries;
    t_Locations = {m_Number, {}};
    for (const Disk& disk : m_Disks) {
        const DriveRecord* const record = m_Rounds.record(disk.m_Instance);
        if (record == nullptr || !record->m_Identify) {
            // The plug-in does not query it, but others want to know why.
            if (record != nullptr)
                TLXX::noteStatus(disk.m_Entry.m_DeviceName, EQuery::IdentifyController, record->m_Status);
            continue;
        }
        entries.push_back(disk.m_Entry);
        t_Locations.m_Places.push_back(disk.m_Location);
    }
    return entries;
}

void ParallelDrives::walkMachine(const TLXX::DeviceWalk& walk)
{
    std::vector<TLXX::CDeviceEntry> entries = m_Machine->Enumerate(walk);
    m_Disks.clear();
    m_Instances.clear();
    std::uint32_t number = 0;
    for (TLXX::CDeviceEntry& entry : entries) {
        std::string instance = m_Machine->Instance(entry.m_DeviceName);
        // A drive that has gone meanwhile has none. No drive has its path as its instance then, so its
        // commands fail.
        if (instance.empty())
            instance = entry.m_DeviceName;
        m_Instances.insert({entry.m_DeviceName, instance});
        m_Disks.push_back({std::move(entry), std::move(instance), m_Machine->Location(++number)});
    }
}

void ParallelDrives::learnIdentities()
{
    std::unordered_map<std::string, Identity> identities;
    std::optional<std::vector<TLXX::CControllerState>> states;
    for (const Disk& disk : m_Disks) {
        const DriveRecord* const record = m_Rounds.record(disk.m_Instance);
        if (record == nullptr || record->m_Identify)
            continue;
        if (const auto known = m_Identities.find(disk.m_Instance); known != m_Identities.end()) {
            identities.insert(*known);
            continue;
        }
        if (!states)
            states = controllersNow(*m_Machine);
        for (const TLXX::CControllerState& state : *states)
            if (state.m_DeviceName == disk.m_Entry.m_DeviceName)
                identities[disk.m_Instance] = {state.m_SerialNumber, state.m_Model, state.m_FirmwareRevision};
    }
    m_Identities = std::move(identities);
}

DriveAnswer ParallelDrives::answerOf(const Disk& disk, const DriveRecord& record) const
{
    DriveAnswer answer;
    answer.m_DeviceName = disk.m_Entry.m_DeviceName;
    answer.m_Instance = disk.m_Instance;
    answer.m_Driver = disk.m_Entry.m_Driver;
    answer.m_Location = disk.m_Location;
    if (const auto identity = m_Identities.find(disk.m_Instance); identity != m_Identities.end()) {
        answer.m_SerialNumber = identity->second.m_SerialNumber;
        answer.m_Model = identity->second.m_Model;
        answer.m_FirmwareRevision = identity->second.m_FirmwareRevision;
    } else if (record.m_Identify) {
        answer.m_SerialNumber = record.m_Identify->sSerialNumber();
        answer.m_Model = record.m_Identify->sModelNumber();
        answer.m_FirmwareRevision = record.m_Identify->sFirmwareRevision();
    }
    answer.m_Answering = record.m_Answering;
    answer.m_LastAnswer = record.m_LastAnswer;
    answer.m_SilentSince = record.m_SilentSince;
    answer.m_SilentRounds = record.m_SilentRounds;
    answer.m_Status = record.m_Status;
    return answer;
}

void ParallelDrives::publish(std::uint64_t number)
{
    DriveRound round;
    round.m_Number = number;
    round.m_Duration = m_Duration;
    round.m_Failures = m_Rounds.failures();
    for (const Disk& disk : m_Disks)
        if (const DriveRecord* const record = m_Rounds.record(disk.m_Instance))
            round.m_Answers.push_back(answerOf(disk, *record));
    {
        const std::scoped_lock guard(m_PublishedLock);
        m_Published = std::move(round);
    }
    m_RoundEnded.Set();
}

std::string ParallelDrives::instanceAt(const std::string& path)
{
    const auto found = m_Instances.find(path);
    return found != m_Instances.end() ? found->second : m_Machine->Instance(path);
}

std::uint32_t ParallelDrives::query(const std::string& path, const CDriveCommand& command,
                                    std::span<std::uint8_t> block)
{
    const std::scoped_lock guard(m_Lock);
    const TLXX::CDriveAddress drive{path, instanceAt(path)};
    const auto answers = [&] {
        const DriveRecord* const record = m_Rounds.record(drive.m_Instance);
        return record != nullptr && record->m_Answering;
    };
    const bool answered = answers();
    const std::uint32_t status = m_Rounds.query(drive, command, block);
    if (answered && !answers())
        publish(m_Published.m_Number);
    return status;
}

std::uint32_t ParallelDrives::IdentifyController(const std::string& path,
                                                 TLXX::NVME_IDENTIFY_CONTROLLER& controller)
{
    return query(path, {EQuery::IdentifyController, 0}, bytesOf(controller));
}

std::uint32_t ParallelDrives::IdentifyNamespace(const std::string& path,
                                                TLXX::NVME_IDENTIFY_NAMESPACE& name_space)
{
    return query(path, {EQuery::IdentifyNamespace, 0}, bytesOf(name_space));
}

std::uint32_t ParallelDrives::SmartHealthLog(const std::string& path,
                                             TLXX::NVME_SMART_HEALTH_INFORMATION_LOG& log)
{
    return query(path, {EQuery::SmartHealthLog, 0}, bytesOf(log));
}

std::uint32_t ParallelDrives::VendorLogPage(const std::string& path, std::uint8_t logIdentifier,
                                            TLXX::VendorLogPage& page)
{
    return query(path, {EQuery::VendorLog, logIdentifier}, page);
}

std::string ParallelDrives::Instance(const std::string& path)
{
    const std::scoped_lock guard(m_Lock);
    return instanceAt(path);
}

std::optional<TLXX::CPciLocation> ParallelDrives::Location(std::uint32_t number)
{
    const Locations& last = t_Locations;
    if (last.m_Owner != m_Number || number == 0 || number > last.m_Places.size())
        return std::nullopt;
    return last.m_Places[number - 1];
}

std::vector<TLXX::CControllerState> ParallelDrives::ControllerStates()
{
    std::vector<TLXX::CControllerState> states = m_Machine->ControllerStates();
    if (m_Rights == Rights::Readers)
        for (TLXX::CControllerState& state : states)
            state.m_AccessStatus = 0;
    return states;
}

std::string ParallelDrives::ModuleVersion(const std::string& driver)
{
    return m_Machine->ModuleVersion(driver);
}

std::unique_ptr<TLXX::IAnnouncements> ParallelDrives::Subscribe(std::function<void()> announce)
{
    return m_Machine->Subscribe(std::move(announce));
}

} // namespace Host
