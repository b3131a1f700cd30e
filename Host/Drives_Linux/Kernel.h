#pragma once

#include <string_view>

namespace Host::Platform {

/** Whether a kernel of this release, such as "6.1.0-32-amd64", shows what is needed about its controllers. */
bool isSupportedKernel(std::string_view release);

} // namespace Host::Platform
