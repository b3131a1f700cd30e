#pragma once

#include "Commands/Session.h"

namespace Host::Cli {

/**
 * Starts the plug-ins and prints each event when it comes. Ends when the time of `--for` is over or when the
 * user asks the program to end. Throws `Failure`, and `std::system_error` when an event cannot be written.
 */
ExitCode watch(const Session& session);

} // namespace Host::Cli
