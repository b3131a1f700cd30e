#include "NvmeStatus.h"
#include "Platform.h"

#include <TLXX/DeviceBackend.h>
#include <TLXX/NvmeQuery.h>

#include <map>
#include <mutex>

namespace TLXX {
namespace {

struct CLastStatuses
{
    std::mutex m_Lock;
    std::map<std::string, std::uint32_t> m_Statuses;
};

// Never destroyed, for a query may still run when the process exits.
CLastStatuses& lastStatuses()
{
    static auto* const instance = new CLastStatuses;
    return *instance;
}

std::uint32_t keep(const std::string& path, std::uint32_t status)
{
    const std::scoped_lock guard(lastStatuses().m_Lock);
    lastStatuses().m_Statuses.insert_or_assign(path, status);
    return status;
}

} // namespace

std::uint32_t NVMeStorageQueryPropertyIdentifyController(const std::string& path,
                                                         NVME_IDENTIFY_CONTROLLER& controller)
{
    const auto backend = deviceBackend();
    return keep(path, backend ? backend->IdentifyController(path, controller)
                              : Platform::identifyController(path, controller));
}

std::uint32_t NVMeStorageQueryPropertyIdentifyNamespace(const std::string& path,
                                                        NVME_IDENTIFY_NAMESPACE& name_space)
{
    const auto backend = deviceBackend();
    return keep(path, backend ? backend->IdentifyNamespace(path, name_space)
                              : Platform::identifyNamespace(path, name_space));
}

std::uint32_t NVMeStorageQueryPropertyGetLogPageSMARTHealthInfo(const std::string& path,
                                                                NVME_SMART_HEALTH_INFORMATION_LOG& log)
{
    const auto backend = deviceBackend();
    return keep(path, backend ? backend->SmartHealthLog(path, log) : Platform::smartHealthLog(path, log));
}

std::uint32_t NVMeStorageQueryPropertyGetVendorSpecificLogPage(const std::string& path,
                                                               std::uint8_t logIdentifier,
                                                               VendorLogPage& page)
{
    const auto backend = deviceBackend();
    return keep(path, backend ? backend->VendorLogPage(path, logIdentifier, page)
                              : Platform::vendorLogPage(path, logIdentifier, page));
}

std::uint32_t lastStatus(const std::string& path)
{
    const std::scoped_lock guard(lastStatuses().m_Lock);
    const auto& statuses = lastStatuses().m_Statuses;
    const auto found = statuses.find(path);
    return found == statuses.end() ? STATUS_SUCCESS : found->second;
}

} // namespace TLXX
