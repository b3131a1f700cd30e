#include "Cli/ShowCommand.h"

#include "Cli/PropertyText.h"
#include "Cli/TopologyCommand.h"
#include "Core/Failure.h"
#include "Core/Text.h"

namespace Host::Cli {

std::string showText(const std::vector<const PI::CObject*>& objects, const Screen& screen)
{
    constexpr std::size_t indent = 2;
    std::string text;
    for (const PI::CObject* object : objects)
        text += headingText(*object, screen) + propertiesText(*object, screen, indent);
    return text;
}

const PI::CProperty& namedProperty(const std::vector<const PI::CObject*>& objects, std::string_view name)
{
    std::string known;
    for (const PI::CObject* object : objects)
        for (const PI::CProperty& property : object->m_Properties) {
            if (equalIgnoringCase(captionText(property), name) || std::to_string(property.Id()) == name)
                return property;
            known += "\n  " + std::to_string(property.Id()) + "  " + captionText(property);
        }
    throw Failure(ExitCode::WrongUsage,
                  "There is no property \"" + std::string(name) + "\" here. These are there:" + known);
}

} // namespace Host::Cli
