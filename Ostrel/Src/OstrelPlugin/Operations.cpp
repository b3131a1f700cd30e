#include "OstrelPlugin/Operations.h"

#include "Ostrel/PluginApi.h"
#include "Records/Trace.h"

#include <PI/ErrorCode.h>

#include <utility>

namespace NAMESPACE_Ostrel {
namespace {

constexpr PI::COperationTemplate GET_EVENTS{PI::OPERATION_GET_EVENTS, 6, 1, 1, 1, false, 0, 1, 1};

} // namespace

std::vector<PI::COperation> pluginOperations()
{
    return {PI::COperation(GET_EVENTS)};
}

std::uint32_t IPLUGINAPI_IMPL::ExecutePluginOperation(CNVMePlugin& plugin, PI::COperation& operation)
{
    OSTREL_TRACE(TRACE_FLOW) << "ENTER ExecutePluginOperation()";
    std::uint32_t result = PI::ERR_OPERATION_NOT_SUPPORTED;
    if (operation.Id() == PI::OPERATION_GET_EVENTS)
        result = GetEvents(plugin, operation);
    (void)UpdateObjectInDatabase(plugin);
    OSTREL_TRACE(TRACE_FLOW) << "LEAVE ExecutePluginOperation() -> %d" << result;
    return result;
}

std::uint32_t IPLUGINAPI_IMPL::GetEvents(CNVMePlugin& /*plugin*/, PI::COperation& operation)
{
    OSTREL_TRACE(TRACE_FLOW) << "ENTER GetEvents()";
    operation.SetEvents({});
    {
        const CTracedWait lock(m_EventsLock, "m_EventsLock", "Release()", OSTREL_HERE);
        if (!lock.Taken())
            return PI::ERR_SUCCESS;
        operation.SetEvents(std::exchange(m_Events, {}));
    }
    OSTREL_TRACE(TRACE_FLOW) << "LEAVE GetEvents() -> %d" << std::uint32_t{PI::ERR_SUCCESS};
    return PI::ERR_SUCCESS;
}

} // namespace NAMESPACE_Ostrel
