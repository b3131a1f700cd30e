#pragma once

#include "Commands/Session.h"
#include "Facts/Drives.h"
#include "Terminal/Screen.h"

#include <string>
#include <vector>

namespace Host::Cli {

/** Prints every drive. Throws `Failure`. */
ExitCode list(const Session& session);

/** One line for each drive. On a terminal, the reasons of a bad health are below the table. */
std::string listText(const std::vector<Drive>& drives, const Screen& screen);

} // namespace Host::Cli
