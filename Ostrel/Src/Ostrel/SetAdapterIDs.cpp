#include "Ostrel/PluginApi.h"
#include "Records/IdentityIndex.h"
#include "Records/Trace.h"
#include "Records/Vendor.h"

#include <PI/ErrorCode.h>

#include <string>

namespace NAMESPACE_Ostrel {

std::uint32_t IPLUGINAPI_IMPL::SetAdapterIDs(const std::vector<PI::CAdapterID>& adapterIDs)
{
    OSTREL_TRACE(TRACE_FLOW) << "ENTER SetAdapterIDs";
    {
        // The worker may run already, because a host may repeat this request.
        const CTracedGuard guard(m_DataLock, "m_DataLock", OSTREL_HERE);
        // Appended, because the first identity of a location stays in force.
        m_AdapterIDs.insert(m_AdapterIDs.end(), adapterIDs.begin(), adapterIDs.end());
        const CIdentityIndex identities(m_AdapterIDs);
        for (CNVMeAdapter& adapter : m_Adapters) {
            const PI::CAdapterID* const identity = identities.Find(adapter);
            if (identity == nullptr)
                continue;
            adapter.m_Name = adapterDisplayName(adapter.m_Vendor, std::to_string(identity->m_AdapterNumber));
            (void)WriteRow(&IPLUGINAPI_IMPL::UpdateObjectInDatabase, adapter);
        }
        if (!WorkerRuns())
            m_WorkerThread = std::make_unique<TLX::Threading::CThread>([this] { Worker(); });
    }
    OSTREL_TRACE(TRACE_FLOW) << "LEAVE SetAdapterIDs";
    return PI::ERR_SUCCESS;
}

} // namespace NAMESPACE_Ostrel
