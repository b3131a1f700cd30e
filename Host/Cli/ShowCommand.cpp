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
    const PI::CProperty* empty = nullptr;
    for (const PI::CObject* object : objects)
        for (const PI::CProperty& property : object->m_Properties) {
            const std::string caption = captionText(property);
            known += "\n  " + std::to_string(property.Id()) + "  " + printable(caption);
            if (!equalIgnoringCase(caption, name) && std::to_string(property.Id()) != name)
                continue;
            if (!valueText(property).empty())
                return property;
            if (empty == nullptr)
                empty = &property;
        }
    if (empty != nullptr)
        return *empty;
    throw Failure(ExitCode::WrongUsage,
                  "There is no property \"" + printable(name) + "\" here. These are there:" + known);
}

} // namespace Host::Cli
