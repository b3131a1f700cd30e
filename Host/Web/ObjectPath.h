#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace Host::Web {

/** What the paths of objects begin with. */
inline constexpr std::string_view OBJECTS_PATH = "/api/v1/objects/";

/** A property of an object, as a path names it. */
struct PropertyName
{
    std::string m_Object;
    std::string m_Property;
};

/** What the path "/api/v1/objects/OBJECT/properties/PROPERTY" names; nothing for another path. */
std::optional<PropertyName> propertyAt(std::string_view path);

// These have percent signs where they are needed.
std::string objectPath(std::string_view object);
std::string propertyPath(const PropertyName& name);

} // namespace Host::Web
