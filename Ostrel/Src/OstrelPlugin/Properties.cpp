#include "OstrelPlugin/Properties.h"

#include "OstrelPlugin/Identity.h"
#include "OstrelPlugin/PollInterval.h"
#include "Records/Module.h"

#include <PI/CaptionId.h>
#include <PI/ErrorCode.h>

namespace NAMESPACE_Ostrel {
namespace {

/** One row of the table. Properties of the plug-in have no description, because one of them can be set. */
struct CPluginPropertyRow
{
    PI::_PROPERTY_ID m_Id;
    PI::_CAPTION_ID m_Caption;
    void (*m_SetValue)(std::uint32_t pollInterval, PI::CProperty& property);
    bool m_Settable = false;
};

void setLocation(std::uint32_t /*pollInterval*/, PI::CProperty& property)
{
    property.SetAttrC(0);
    property.SetValue(pluginLocation());
}

template<const char* Text>
void setText(std::uint32_t /*pollInterval*/, PI::CProperty& property)
{
    property.SetValue(Text);
}

void setPollInterval(std::uint32_t pollInterval, PI::CProperty& property)
{
    property.SetKind(PI::KIND_BOUNDED);
    property.SetUnits(PI::UNIT_SECONDS);
    showPollInterval(pollInterval, property);
}

constexpr CPluginPropertyRow PluginPropertyTable[] = {
    {PI::PROP_LOCATION, PI::CAPTION_NONE, setLocation},
    {PI::PROP_NAME, PI::PLUGIN_CAPTION_NAME, setText<PLUGIN_NAME>},
    {PI::PROP_VERSION, PI::PLUGIN_CAPTION_VERSION, setText<PLUGIN_VERSION>},
    {PI::PROP_VENDOR, PI::PLUGIN_CAPTION_VENDOR, setText<PLUGIN_VENDOR>},
    {PI::PROP_POLL_INTERVAL, PI::PLUGIN_CAPTION_POLL_INTERVAL, setPollInterval, true},
};

} // namespace

std::uint32_t getPluginProperties(std::uint32_t pollInterval, std::vector<PI::CProperty>& properties,
                                  std::uint32_t propertyId)
{
    properties.clear();
    for (const CPluginPropertyRow& row : PluginPropertyTable) {
        if (propertyId != PI::ALL_PROPERTIES && propertyId != row.m_Id)
            continue;
        PI::CProperty& property = properties.emplace_back(row.m_Id, row.m_Settable);
        property.SetNlsID(row.m_Caption);
        row.m_SetValue(pollInterval, property);
    }
    return PI::ERR_SUCCESS;
}

} // namespace NAMESPACE_Ostrel
