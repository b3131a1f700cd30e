#pragma once

#include "Web/Exchange.h"
#include "Web/ServiceView.h"

namespace Host::Web {

/** Answers the requests of the service's interface from `view`, which must outlive it. */
Handler routes(IServiceView& view);

} // namespace Host::Web
