#pragma once

#include "Base/Failure.h"
#include "Commands/CommandLine.h"
#include "Terminal/Terminal.h"

namespace Host::Cli {

/**
 * Runs the service until the user or the system asks for its end. A simulated fleet without a data folder
 * gets one that is removed at the end. Throws `Failure`.
 */
ExitCode serve(Options options, Terminal& terminal);

} // namespace Host::Cli
