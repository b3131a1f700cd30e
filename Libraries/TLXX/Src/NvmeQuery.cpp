#include "NvmeStatus.h"
#include "Platform.h"

#include <TLXX/DeviceBackend.h>
#include <TLXX/NvmeQuery.h>

#include <map>
#include <mutex>
#include <utility>

namespace TLXX {
namespace {

struct CLastStatuses
{
    std::mutex m_Lock;
    std::map<std::pair<std::string, EQuery>, std::uint32_t> m_Statuses;
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
    lastStatuses().m_Statuses.insert_or_assign({path, query}, status);
    return status;
}

} // namespace

std::uint32_t NVMeStorageQueryPropertyIdentifyController(const std::string& path,
                                                         NVME_IDENTIFY_CONTROLLER& controller)
{
    const auto backend = deviceBackend();
    return keep(path, EQuery::IdentifyController,
                backend ? backend->IdentifyController(path, controller)
                        : Platform::identifyController(path, controller));
}

std::uint32_t NVMeStorageQueryPropertyIdentifyNamespace(const std::string& path,
                                                        NVME_IDENTIFY_NAMESPACE& name_space)
{
    const auto backend = deviceBackend();
    return keep(path, EQuery::IdentifyNamespace,
                backend ? backend->IdentifyNamespace(path, name_space)
                        : Platform::identifyNamespace(path, name_space));
}

std::uint32_t NVMeStorageQueryPropertyGetLogPageSMARTHealthInfo(const std::string& path,
                                                                NVME_SMART_HEALTH_INFORMATION_LOG& log)
{
    const auto backend = deviceBackend();
    return keep(path, EQuery::SmartHealthLog,
                backend ? backend->SmartHealthLog(path, log) : Platform::smartHealthLog(path, log));
}

std::uint32_t NVMeStorageQueryPropertyGetVendorSpecificLogPage(const std::string& path,
                                                               std::uint8_t logIdentifier,
                                                               VendorLogPage& page)
{
    const auto backend = deviceBackend();
    return keep(path, EQuery::VendorLog,
                backend ? backend->VendorLogPage(path, logIdentifier, page)
                        : Platform::vendorLogPage(path, logIdentifier, page));
}

std::optional<std::uint32_t> lastStatus(const std::string& path, EQuery query)
{
    const std::scoped_lock guard(lastStatuses().m_Lock);
    const auto& statuses = lastStatuses().m_Statuses;
    const auto found = statuses.find({path, query});
    return found == statuses.end() ? std::nullopt : std::optional(found->second);
}

} // namespace TLXX
