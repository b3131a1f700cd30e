#pragma once

#include "Commands/Session.h"
#include "Plugins/ObjectStore.h"
#include "Terminal/Screen.h"

#include <string>
#include <vector>

namespace Host::Cli {

/** Prints the objects that the user named, or one property of them. Throws `Failure`. */
ExitCode show(const Session& session);

/**
 * The properties of the objects below headings, with the meaning of their states and the figures of their
 * end-of-life dates.
 */
std::string showText(const ObjectStore& store, const std::vector<const PI::CObject*>& objects,
                     const Screen& screen);

} // namespace Host::Cli
