#include "Disk.h"
#include "NvmeStatus.h"

#include <TLXX/DeviceBackend.h>
#include <TLXX/NvmeQuery.h>

#include <map>
#include <mutex>
#include <unordered_map>
#include <utility>

namespace TLXX {
namespace {

struct CLastStatuses
{
    std::mutex m_Lock;
    std::unordered_map<std::string, std::map<EQuery, std::uint32_t>> m_Statuses; // by path
};

// Never destroyed, for a query may still run when the process exits.
CLastStatuses& lastStatuses()
{
    static auto* const instance = new CLastStatuses;
    return *instance;
}

std::uint32_t keep(const std::string& path, EQuery query, std::uint32_t status)
{
    const std::scoped_lock guard(lastStatuses().m_Lock);
    lastStatuses().m_Statuses[path][query] = status;
    return status;
}

} // namespace

struct CQuerySession::Native
{
    explicit Native(std::string path) : m_Path(std::move(path)) {}

    /** The disk, opened unless it is. */
    Platform::CDisk& Disk()
    {
        if (!m_Disk || m_Disk->Status() != STATUS_SUCCESS)
            m_Disk.emplace(m_Path);
        return *m_Disk;
    }

    const std::string m_Path;
    std::optional<Platform::CDisk> m_Disk;
    Native* const m_Outer = std::exchange(t_Innermost, this);

    static thread_local Native* t_Innermost;
};

thread_local CQuerySession::Native* CQuerySession::Native::t_Innermost = nullptr;

CQuerySession::CQuerySession(std::string path) : m_Native(std::make_unique<Native>(std::move(path))) {}

CQuerySession::~CQuerySession()
{
    Native::t_Innermost = m_Native->m_Outer;
}

namespace {

/** Asks the back-end that stands in the machine's place, or else the disk, and keeps the status. */
template<typename AskBackend, typename AskDisk>
std::uint32_t ask(const std::string& path, EQuery query, AskBackend askBackend, AskDisk askDisk)
{
    if (const auto backend = deviceBackend())
        return keep(path, query, askBackend(*backend));
    CQuerySession::Native* const session = CQuerySession::Native::t_Innermost;
    if (session != nullptr && session->m_Path == path)
        return keep(path, query, askDisk(session->Disk()));
    Platform::CDisk disk(path);
    return keep(path, query, askDisk(disk));
}

} // namespace

std::uint32_t NVMeStorageQueryPropertyIdentifyController(const std::string& path,
                                                         NVME_IDENTIFY_CONTROLLER& controller)
{
    return ask(
        path, EQuery::IdentifyController,
        [&](IDeviceBackend& backend) { return backend.IdentifyController(path, controller); },
        [&](Platform::CDisk& disk) { return disk.IdentifyController(controller); });
}

std::uint32_t NVMeStorageQueryPropertyIdentifyNamespace(const std::string& path,
                                                        NVME_IDENTIFY_NAMESPACE& name_space)
{
    return ask(
        path, EQuery::IdentifyNamespace,
        [&](IDeviceBackend& backend) { return backend.IdentifyNamespace(path, name_space); },
        [&](Platform::CDisk& disk) { return disk.IdentifyNamespace(name_space); });
}

std::uint32_t NVMeStorageQueryPropertyGetLogPageSMARTHealthInfo(const std::string& path,
                                                                NVME_SMART_HEALTH_INFORMATION_LOG& log)
{
    return ask(
        path, EQuery::SmartHealthLog,
        [&](IDeviceBackend& backend) { return backend.SmartHealthLog(path, log); },
        [&](Platform::CDisk& disk) { return disk.SmartHealthLog(log); });
}

std::uint32_t NVMeStorageQueryPropertyGetVendorSpecificLogPage(const std::string& path,
                                                               std::uint8_t logIdentifier,
                                                               VendorLogPage& page)
{
    return ask(
        path, EQuery::VendorLog,
        [&](IDeviceBackend& backend) { return backend.VendorLogPage(path, logIdentifier, page); },
        [&](Platform::CDisk& disk) { return disk.VendorLogPage(logIdentifier, page); });
}

std::optional<std::uint32_t> lastStatus(const std::string& path, EQuery query)
{
    const std::scoped_lock guard(lastStatuses().m_Lock);
    const auto& statuses = lastStatuses().m_Statuses;
    const auto ofPath = statuses.find(path);
    if (ofPath == statuses.end())
        return std::nullopt;
    const auto found = ofPath->second.find(query);
    return found == ofPath->second.end() ? std::nullopt : std::optional(found->second);
}

} // namespace TLXX
