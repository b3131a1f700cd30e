#pragma once

#include <string_view>

namespace Host::Platform {

/** Whether a kernel of this release, such as "6.1.0-32-amd64", says of its controllers what is looked for. */
bool isSupportedKernel(std::string_view release);

} // namespace Host::Platform
