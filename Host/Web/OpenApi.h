#pragma once

#include <string_view>

namespace Host::Web {

/** The description of the service's interface, Host/Data/OpenApi.json. */
std::string_view openApi();

} // namespace Host::Web
