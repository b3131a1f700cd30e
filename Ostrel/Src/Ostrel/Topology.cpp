#include "Ostrel/PluginApi.h"
#include "OstrelPlugin/Operations.h"
#include "Records/Trace.h"

#include <PI/ErrorCode.h>

namespace NAMESPACE_Ostrel {

std::uint32_t IPLUGINAPI_IMPL::GetTopology(std::vector<PI::CObject>& objects)
{
    OSTREL_TRACE(TRACE_FLOW) << "ENTER GetTopology";
    const CTracedGuard guard(m_DataLock, "m_DataLock", OSTREL_HERE);

    // Only the CObject part of each record goes to the host.
    objects.clear();
    objects.reserve(m_Adapters.size() + m_PhysicalDrives.size() + 1);

    PI::CObject& plugin = objects.emplace_back(m_Plugin);
    GetPluginProperties(m_Plugin, plugin.m_Properties, PI::ALL_PROPERTIES);
    plugin.m_Operations = pluginOperations();

    for (CNVMeAdapter& adapter : m_Adapters) {
        GetAdapterProperties(adapter, objects.emplace_back(adapter).m_Properties, PI::ALL_PROPERTIES);
        OSTREL_TRACE(TRACE_WAKE) << "GetTopology() Adapter m_ID=0x%x" << adapter.m_ID;
    }
    OSTREL_TRACE(TRACE_WAKE) << "GetTopology() m_Adapters = %d" << m_Adapters.size();

    for (const CNVMePhysicalDrive& drive : m_PhysicalDrives) {
        GetPhysicalDriveProperties(drive, objects.emplace_back(drive).m_Properties, PI::ALL_PROPERTIES);
        OSTREL_TRACE(TRACE_WAKE) << "GetTopology() PhysicalDrive m_ID=0x%x" << drive.m_ID;
    }
    OSTREL_TRACE(TRACE_WAKE) << "GetTopology() m_PhysicalDrives = %d" << m_PhysicalDrives.size();

    OSTREL_TRACE(TRACE_FLOW) << "LEAVE GetTopology";
    return PI::ERR_SUCCESS;
}

} // namespace NAMESPACE_Ostrel
