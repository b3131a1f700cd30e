#include "Commands/SetCommand.h"

#include "Documents/Json.h"
#include "Facts/PropertySetting.h"
#include "Plugins/DataFolder.h"

#include <nlohmann/json.hpp>

namespace Host::Cli {

ExitCode set(const Session& session)
{
    const Options& options = session.m_Options;
    makeDataFolder(session.m_Folders.m_Data);
    Inventory inventory(session);
    const NamedProperty named =
        namedProperty(session.namedObjects(inventory.objects()), options.m_Property.value_or(""));
    const PI::CProperty property =
        setProperty(inventory.plugins().showing(named.m_Object.m_ID), named.m_Object, named.m_Property,
                    options.m_Value, settingsFile(session.m_Folders.m_Data));
    inventory.plugins().deInitialize();
    if (options.m_Json)
        session.print(nlohmann::ordered_json{{"property", propertyJson(property)}});
    else
        session.print(setText(property, options.m_Value));
    return ExitCode::Done;
}

} // namespace Host::Cli
