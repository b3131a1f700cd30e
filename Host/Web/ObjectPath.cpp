#include "Web/ObjectPath.h"

#include "Base/PercentCode.h"

namespace Host::Web {
namespace {

constexpr std::string_view PROPERTIES = "/properties/";

} // namespace

std::optional<PropertyName> propertyAt(std::string_view path)
{
    if (!path.starts_with(OBJECTS_PATH))
        return std::nullopt;
    path.remove_prefix(OBJECTS_PATH.size());
    const std::size_t middle = path.rfind(PROPERTIES);
    if (middle == 0 || middle == std::string_view::npos || middle + PROPERTIES.size() == path.size())
        return std::nullopt;
    return PropertyName{std::string(path.substr(0, middle)),
                        std::string(path.substr(middle + PROPERTIES.size()))};
}

std::string objectPath(std::string_view object)
{
    return std::string(OBJECTS_PATH) + percentEncoded(object);
}

std::string propertyPath(const PropertyName& name)
{
    return objectPath(name.m_Object) + std::string(PROPERTIES) + percentEncoded(name.m_Property);
}

} // namespace Host::Web
