#pragma once

#include "Commands/Session.h"

namespace Host::Cli {

/**
 * Has the plug-ins watch, and prints each event as it comes, until the time of `--for` is over or somebody
 * asks the program to end. Throws `Failure`, and `std::system_error` when an event cannot be written.
 */
ExitCode watch(const Session& session);

} // namespace Host::Cli
