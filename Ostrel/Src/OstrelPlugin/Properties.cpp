#include "OstrelPlugin/Properties.h"

#include "Ostrel/PluginApi.h"
#include "OstrelPlugin/Identity.h"
#include "Records/Module.h"

#include <PI/ErrorCode.h>

namespace NAMESPACE_Ostrel {
namespace {

constexpr std::uint32_t CAPTION_NAME = 23334;
constexpr std::uint32_t CAPTION_POLL_INTERVAL = 23335;
constexpr std::uint32_t CAPTION_VENDOR = 23338;
constexpr std::uint32_t CAPTION_VERSION = 23339;

PI::CProperty location()
{
    PI::CProperty property(PI::PROP_LOCATION, false);
    property.SetAttrC(0);
    property.SetValue(pluginLocation());
    return property;
}

PI::CProperty text(std::uint32_t propertyId, std::uint32_t caption, const char* value)
{
    PI::CProperty property(propertyId, false);
    property.SetNlsID(caption);
    property.SetValue(value);
    return property;
}

PI::CProperty pollInterval(std::uint32_t seconds)
{
    PI::CProperty property(PI::PROP_POLL_INTERVAL, true);
    property.SetNlsID(CAPTION_POLL_INTERVAL);
    property.SetKind(PI::KIND_BOUNDED);
    property.SetUnits(PI::UNIT_SECONDS);
    property.SetValue(static_cast<std::int32_t>(seconds), MINIMUM_POLL_INTERVAL, MAXIMUM_POLL_INTERVAL, 1);
    return property;
}

} // namespace

std::uint32_t IPLUGINAPI_IMPL::GetPluginProperties(const CNVMePlugin& /*plugin*/,
                                                   std::vector<PI::CProperty>& properties,
                                                   std::uint32_t propertyId)
{
    properties = {
        location(),
        text(PI::PROP_NAME, CAPTION_NAME, PLUGIN_NAME),
        text(PI::PROP_VERSION, CAPTION_VERSION, PLUGIN_VERSION),
        text(PI::PROP_VENDOR, CAPTION_VENDOR, PLUGIN_VENDOR),
        pollInterval(m_PollInterval),
    };
    if (propertyId != PI::ALL_PROPERTIES)
        std::erase_if(properties, [&](const PI::CProperty& property) { return property.Id() != propertyId; });
    return PI::ERR_SUCCESS;
}

std::uint32_t IPLUGINAPI_IMPL::SetPluginProperty(CNVMePlugin& plugin, const PI::CProperty& property)
{
    if (property.Id() != PI::PROP_POLL_INTERVAL)
        return PI::ERR_PROPERTY_NOT_SETTABLE;
    std::int32_t value = 0;
    std::int32_t minimum = 0;
    std::int32_t maximum = 0;
    std::int32_t step = 0;
    if (!property.GetValue(value, minimum, maximum, step))
        return PI::ERR_GENERAL_FAILURE;

    // The bounds are those that the host handed back, in whatever order they are.
    if (value < minimum)
        value = minimum;
    if (value > maximum)
        value = maximum;
    m_PollInterval = static_cast<std::uint32_t>(value);
    ++plugin.m_UpdateCount;
    const std::uint32_t result = m_ConfigFile.WriteKeyValue(POLL_INTERVAL_KEY, std::to_string(value), -1, -1);
    m_PrivateEvent.Set();
    return result;
}

} // namespace NAMESPACE_Ostrel
