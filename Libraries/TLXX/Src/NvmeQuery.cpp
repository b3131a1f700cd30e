#include "NvmeStatus.h"
#include "PageMemory.h"
#include "QuerySession.h"

#include <TLXX/DeviceBackend.h>
#include <TLXX/IntelLogs.h>
#include <TLXX/NvmeQuery.h>

#include <map>
#include <memory>
#include <mutex>
#include <span>
#include <type_traits>
#include <unordered_map>
#include <utility>

namespace TLXX {
namespace {

struct CLastStatuses
{
    std::mutex m_Lock;
    std::unordered_map<std::string, std::map<EQuery, std::uint32_t>> m_Statuses; // by path
};

// Never destroyed, because a query may still run when the process exits.
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

/** The answer of a drive, and which drive it was. */
struct CAnswer
{
    std::uint32_t m_Status;
    std::string m_Instance;
};

/** Asks the back-end if one is set, otherwise the disk. */
template<typename AskBackend, typename AskDisk>
CAnswer answerOf(const std::string& path, IDeviceBackend* backend, AskBackend askBackend, AskDisk askDisk)
{
    if (backend != nullptr) {
        std::string instance = backend->Instance(path);
        return {askBackend(*backend), std::move(instance)};
    }
    return withDisk(path, [&](Platform::CDisk& disk) { return CAnswer{askDisk(disk), disk.Instance()}; });
}

template<typename Block>
std::span<std::uint8_t> bytesOf(Block& block)
{
    static_assert(std::is_trivially_copyable_v<Block>);
    return {reinterpret_cast<std::uint8_t*>(&block), sizeof block};
}

/** Keeps a good answer. Replaces a failed one by the last good answer. */
template<typename Block>
std::uint32_t remember(const std::string& path, CPageMemory& memory, const CAnswer& answer,
                       CPageMemory::Page page, Block& block)
{
    if (answer.m_Status == STATUS_SUCCESS)
        memory.Keep(path, answer.m_Instance, page, bytesOf(block));
    else
        (void)memory.Recall(answer.m_Instance, page, bytesOf(block));
    return keep(path, page.first, answer.m_Status);
}

constexpr CPageMemory::Page CONTROLLER_PAGE{EQuery::IdentifyController, 0};
constexpr CPageMemory::Page NAMESPACE_PAGE{EQuery::IdentifyNamespace, 0};
constexpr CPageMemory::Page HEALTH_PAGE{EQuery::SmartHealthLog, 0};

constexpr CPageMemory::Page vendorPage(std::uint8_t logIdentifier)
{
    return {EQuery::VendorLog, logIdentifier};
}

/** These vendor logs decide states. Texts are not kept. */
constexpr bool isRemembered(std::uint8_t logIdentifier)
{
    return logIdentifier == INTEL_TEMPERATURE_STATISTIC_LOG_PAGE ||
           logIdentifier == INTEL_LEGACY_SMART_LOG_PAGE;
}

template<typename Block>
std::shared_ptr<const Block> lastPage(const std::string& path, CPageMemory::Page page)
{
    const CPageMemory::Bytes bytes = deviceSource().m_Memory->PageAt(path, page);
    if (!bytes || bytes->size() != sizeof(Block))
        return nullptr;
    return {bytes, reinterpret_cast<const Block*>(bytes->data())};
}

} // namespace

std::uint32_t NVMeStorageQueryPropertyIdentifyController(const std::string& path,
                                                         NVME_IDENTIFY_CONTROLLER& controller)
{
    const CDeviceSource source = deviceSource();
    const CAnswer answer = answerOf(
        path, source.m_Backend.get(),
        [&](IDeviceBackend& backend) { return backend.IdentifyController(path, controller); },
        [&](Platform::CDisk& disk) { return disk.IdentifyController(controller); });
    // The caller's block stays as it was when this fails, so that a drive that has gone is not found again.
    if (answer.m_Status == STATUS_SUCCESS) {
        source.m_Memory->Identified(answer.m_Instance, controller.sSerialNumber());
        source.m_Memory->Keep(path, answer.m_Instance, CONTROLLER_PAGE, bytesOf(controller));
    }
    return keep(path, EQuery::IdentifyController, answer.m_Status);
}

std::uint32_t NVMeStorageQueryPropertyIdentifyNamespace(const std::string& path,
                                                        NVME_IDENTIFY_NAMESPACE& name_space)
{
    const CDeviceSource source = deviceSource();
    const CAnswer answer = answerOf(
        path, source.m_Backend.get(),
        [&](IDeviceBackend& backend) { return backend.IdentifyNamespace(path, name_space); },
        [&](Platform::CDisk& disk) { return disk.IdentifyNamespace(name_space); });
    return remember(path, *source.m_Memory, answer, NAMESPACE_PAGE, name_space);
}

std::uint32_t NVMeStorageQueryPropertyGetLogPageSMARTHealthInfo(const std::string& path,
                                                                NVME_SMART_HEALTH_INFORMATION_LOG& log)
{
    const CDeviceSource source = deviceSource();
    NVME_SMART_HEALTH_INFORMATION_LOG fresh{};
    CAnswer answer = answerOf(
        path, source.m_Backend.get(),
        [&](IDeviceBackend& backend) { return backend.SmartHealthLog(path, fresh); },
        [&](Platform::CDisk& disk) { return disk.SmartHealthLog(fresh); });
    if (answer.m_Status == STATUS_SUCCESS && !fresh.Filled())
        answer.m_Status = STATUS_EMPTY_PAGE;
    if (answer.m_Status == STATUS_SUCCESS)
        log = fresh;
    return remember(path, *source.m_Memory, answer, HEALTH_PAGE, log);
}

std::uint32_t NVMeStorageQueryPropertyGetVendorSpecificLogPage(const std::string& path,
                                                               std::uint8_t logIdentifier,
                                                               VendorLogPage& page)
{
    const CDeviceSource source = deviceSource();
    const CAnswer answer = answerOf(
        path, source.m_Backend.get(),
        [&](IDeviceBackend& backend) { return backend.VendorLogPage(path, logIdentifier, page); },
        [&](Platform::CDisk& disk) { return disk.VendorLogPage(logIdentifier, page); });
    if (!isRemembered(logIdentifier))
        return keep(path, EQuery::VendorLog, answer.m_Status);
    return remember(path, *source.m_Memory, answer, vendorPage(logIdentifier), page);
}

void noteStatus(const std::string& path, EQuery query, std::uint32_t status)
{
    (void)keep(path, query, status);
}

std::shared_ptr<const NVME_IDENTIFY_CONTROLLER> lastIdentifyController(const std::string& path)
{
    return lastPage<NVME_IDENTIFY_CONTROLLER>(path, CONTROLLER_PAGE);
}

std::shared_ptr<const NVME_SMART_HEALTH_INFORMATION_LOG> lastHealthLog(const std::string& path)
{
    return lastPage<NVME_SMART_HEALTH_INFORMATION_LOG>(path, HEALTH_PAGE);
}

std::shared_ptr<const VendorLogPage> lastVendorLog(const std::string& path, std::uint8_t logIdentifier)
{
    return lastPage<VendorLogPage>(path, vendorPage(logIdentifier));
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
