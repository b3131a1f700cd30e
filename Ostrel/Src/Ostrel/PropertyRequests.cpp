#include "Ostrel/PluginApi.h"
#include "OstrelAdapter/Properties.h"
#include "OstrelPhysicalDrive/Properties.h"
#include "OstrelPlugin/PollInterval.h"
#include "OstrelPlugin/Properties.h"
#include "Records/Lookup.h"
#include "Records/Trace.h"

#include <PI/ErrorCode.h>

#include <utility>

namespace NAMESPACE_Ostrel {

std::uint32_t IPLUGINAPI_IMPL::GetProperties(std::uint64_t objectID, std::vector<PI::CProperty>& properties)
{
    const CTracedGuard guard(m_DataLock, "m_DataLock", OSTREL_HERE);
    return BuildProperties(objectID, properties, PI::ALL_PROPERTIES, "GetProperties()", OSTREL_HERE);
}

std::uint32_t IPLUGINAPI_IMPL::GetProperty(std::uint64_t objectID, PI::CProperty& property)
{
    const CTracedGuard guard(m_DataLock, "m_DataLock", OSTREL_HERE);
    std::vector<PI::CProperty> properties;
    const std::uint32_t result =
        BuildProperties(objectID, properties, property.Id(), "GetProperty()", OSTREL_HERE);
    if (result != PI::ERR_SUCCESS)
        return result;
    if (properties.empty())
        return PI::ERR_GENERAL_FAILURE;
    property = std::move(properties.front());
    return PI::ERR_SUCCESS;
}

std::uint32_t IPLUGINAPI_IMPL::SetProperty(std::uint64_t objectID, const PI::CProperty& property)
{
    const CTracedGuard guard(m_DataLock, "m_DataLock", OSTREL_HERE);
    if (IsPlugin(objectID))
        return SetPluginProperty(m_Plugin, property);
    return IsAdapterOrDrive(objectID) ? PI::ERR_PROPERTY_NOT_SETTABLE : PI::ERR_OBJECT_NOT_FOUND;
}

std::uint32_t IPLUGINAPI_IMPL::GetPluginProperties(const CNVMePlugin& /*plugin*/,
                                                   std::vector<PI::CProperty>& properties,
                                                   std::uint32_t propertyId)
{
    return getPluginProperties(m_PollInterval, properties, propertyId);
}

std::uint32_t IPLUGINAPI_IMPL::GetAdapterProperties(CNVMeAdapter& adapter,
                                                    std::vector<PI::CProperty>& properties,
                                                    std::uint32_t propertyId)
{
    return getAdapterProperties(adapter, properties, propertyId);
}

std::uint32_t IPLUGINAPI_IMPL::GetPhysicalDriveProperties(const CNVMePhysicalDrive& drive,
                                                          std::vector<PI::CProperty>& properties,
                                                          std::uint32_t propertyId)
{
    return getPhysicalDriveProperties(drive, properties, propertyId);
}

std::uint32_t IPLUGINAPI_IMPL::SetPluginProperty(CNVMePlugin& plugin, const PI::CProperty& property)
{
    if (property.Id() != PI::PROP_POLL_INTERVAL)
        return PI::ERR_PROPERTY_NOT_SETTABLE;
    const auto interval = requestedPollInterval(property);
    if (!interval)
        return PI::ERR_GENERAL_FAILURE;
    m_PollInterval = *interval;
    ++plugin.m_UpdateCount;
    const std::uint32_t result = writePollInterval(m_ConfigFile, *interval);
    m_PrivateEvent.Set();
    return result;
}

std::uint32_t IPLUGINAPI_IMPL::BuildProperties(std::uint64_t objectID, std::vector<PI::CProperty>& properties,
                                               std::uint32_t propertyId, std::string_view request,
                                               const CTracePlace& place)
{
    if (IsPlugin(objectID))
        return GetPluginProperties(m_Plugin, properties, propertyId);
    if (traceEnabled(TRACE_WAKE))
        OSTREL_TRACE_LINE(TRACE_WAKE, place) << "%s Adapter = %d" << request << m_Adapters.size();
    if (CNVMeAdapter* const adapter = findObject(m_Adapters, objectID))
        return GetAdapterProperties(*adapter, properties, propertyId);
    if (traceEnabled(TRACE_WAKE))
        OSTREL_TRACE_LINE(TRACE_WAKE, place)
            << "%s PhysicalDrives = %d" << request << m_PhysicalDrives.size();
    if (const CNVMePhysicalDrive* const drive = findObject(m_PhysicalDrives, objectID))
        return GetPhysicalDriveProperties(*drive, properties, propertyId);
    return PI::ERR_OBJECT_NOT_FOUND;
}

bool IPLUGINAPI_IMPL::IsPlugin(std::uint64_t objectID) const
{
    // Before initialisation the record has no identifier, so no object can be found by it.
    return objectID != 0 && objectID == m_Plugin.m_ID;
}

bool IPLUGINAPI_IMPL::IsAdapterOrDrive(std::uint64_t objectID) const
{
    return findObject(m_Adapters, objectID) != nullptr || findObject(m_PhysicalDrives, objectID) != nullptr;
}

} // namespace NAMESPACE_Ostrel
