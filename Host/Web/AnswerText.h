#pragma once

#include "Web/Exchange.h"

#include <string>

namespace Host::Web {

/**
 * The status line and the header fields of an answer, as they are sent now. They forbid browsers to keep the
 * answer, to run scripts in it and to show it within another page.
 */
std::string headText(const Response& response, bool keepsAlive);

} // namespace Host::Web
