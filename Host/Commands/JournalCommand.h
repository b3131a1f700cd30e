#pragma once

#include "Base/Failure.h"
#include "Commands/CommandLine.h"
#include "Terminal/Terminal.h"

namespace Host::Cli {

/**
 * Prints what the service's journal tells, and with `--follow` what comes, until the user asks the program to
 * end. It needs no drives, and the service only when this user may not read the journal's file. Throws
 * `Failure`, and `std::system_error` when an entry cannot be written.
 */
ExitCode journal(const Options& options, Terminal& terminal);

} // namespace Host::Cli
