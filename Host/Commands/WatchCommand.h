#pragma once

#include "Commands/Session.h"
#include "Terminal/Screen.h"

namespace Host::Platform {
class ResultChannel;
}

namespace Host::Cli {

/**
 * Has the plug-in watch, and prints each event as it comes, until the time of `--for` is over or somebody
 * asks the program to end. Throws `Failure`, and `std::system_error` when an event cannot be written.
 */
void watch(const Session& session, Platform::ResultChannel& results, const Screen& screen);

} // namespace Host::Cli
