#pragma once

#include "Web/Exchange.h"
#include "Web/ServiceView.h"

#include <optional>
#include <string>
#include <string_view>

namespace Host::Web {

/** A property of an object, as a path names it. */
struct PropertyName
{
    std::string m_Object;
    std::string m_Property;
};

/** What the path "/api/v1/objects/OBJECT/properties/PROPERTY" names; nothing for another path. */
std::optional<PropertyName> settableProperty(std::string_view path);

/** The path of a property, with percent signs where they are needed. */
std::string propertyPath(const PropertyName& name);

/**
 * Sets a property to the value in the request's document, and answers later. Only callers at the local socket
 * who may change something may do so. Throws `WrongParameter` when the document has no value; then it does
 * not answer.
 */
void setProperty(IServiceView& view, const PropertyName& name, const Request& request,
                 const Respond& respond);

} // namespace Host::Web
