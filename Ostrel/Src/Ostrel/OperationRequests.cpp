#include "Ostrel/PluginApi.h"
#include "OstrelPlugin/Operations.h"
#include "Records/Trace.h"

#include <PI/ErrorCode.h>

#include <utility>

namespace NAMESPACE_Ostrel {

std::uint32_t IPLUGINAPI_IMPL::GetOperations(std::uint64_t objectID, std::vector<PI::COperation>& operations)
{
    OSTREL_TRACE(TRACE_PROGRESS) << "ENTER GetOperations object=0x%x" << objectID;
    const CTracedGuard guard(m_DataLock, "m_DataLock", OSTREL_HERE);
    std::uint32_t result = PI::ERR_SUCCESS;
    if (IsPlugin(objectID))
        operations = pluginOperations();
    else if (IsAdapterOrDrive(objectID))
        operations.clear();
    else
        result = PI::ERR_OBJECT_NOT_FOUND;
    OSTREL_TRACE(TRACE_PROGRESS) << "ENTER GetOperations ret=%d" << result;
    return result;
}

std::uint32_t IPLUGINAPI_IMPL::CheckOperation(std::uint64_t objectID, const PI::COperation& operation)
{
    OSTREL_TRACE(TRACE_PROGRESS) << "ENTER CheckOperation operation=%d" << operation.Id();
    const CTracedGuard guard(m_DataLock, "m_DataLock", OSTREL_HERE);
    const bool known = IsPlugin(objectID) || IsAdapterOrDrive(objectID);
    const std::uint32_t result = known ? PI::ERR_SUCCESS : PI::ERR_OBJECT_NOT_FOUND;
    OSTREL_TRACE(TRACE_PROGRESS) << "LEAVE CheckOperation(%d)" << result;
    return result;
}

std::uint32_t IPLUGINAPI_IMPL::ExecuteOperation(std::uint64_t objectID, PI::COperation& operation)
{
    const CTracedGuard guard(m_DataLock, "m_DataLock", OSTREL_HERE);
    if (IsPlugin(objectID))
        return ExecutePluginOperation(m_Plugin, operation);
    return IsAdapterOrDrive(objectID) ? PI::ERR_OPERATION_NOT_SUPPORTED : PI::ERR_OBJECT_NOT_FOUND;
}

std::uint32_t IPLUGINAPI_IMPL::ExecutePluginOperation(CNVMePlugin& plugin, PI::COperation& operation)
{
    OSTREL_TRACE(TRACE_FLOW) << "ENTER ExecutePluginOperation()";
    std::uint32_t result = PI::ERR_OPERATION_NOT_SUPPORTED;
    if (operation.Id() == PI::OPERATION_GET_EVENTS)
        result = GetEvents(plugin, operation);
    // The events were taken out already, so they are handed over even when writing the row fails.
    (void)WriteRow(&IPLUGINAPI_IMPL::UpdateObjectInDatabase, plugin);
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
