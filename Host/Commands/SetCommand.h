#pragma once

#include "Commands/Session.h"

namespace Host::Cli {

/**
 * Changes a property of an object and prints its new value. The plug-ins start no worker, and no row is kept.
 * Throws `Failure`.
 */
ExitCode set(const Session& session);

} // namespace Host::Cli
