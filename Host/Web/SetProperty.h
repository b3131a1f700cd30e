#pragma once

#include "Web/Exchange.h"
#include "Web/ObjectPath.h"
#include "Web/ServiceView.h"

namespace Host::Web {

/**
 * Sets a property to the value in the request's document, and answers later. Only callers at the local socket
 * who may change something may do so. Throws `WrongParameter` when the document has no value; then it does
 * not answer.
 */
void setProperty(IServiceView& view, const PropertyName& name, const Request& request,
                 const Respond& respond);

} // namespace Host::Web
