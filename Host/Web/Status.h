#pragma once

#include "Base/Failure.h"

#include <string_view>

// The status codes of HTTP that the service gives.
namespace Host::Web {

/** The words for a status code, such as "Not Found". Empty for a code that is never given. */
std::string_view statusText(unsigned status);

/** The status code that tells of a failure with this exit code. */
unsigned statusOf(ExitCode exitCode);

/** The status code for a failure. What a plug-in refuses may be the client's mistake or the service's
 * trouble. */
unsigned statusOf(const Failure& failure);

/** The exit code for a failure that this status code tells of. */
ExitCode exitCodeOf(unsigned status);

} // namespace Host::Web
