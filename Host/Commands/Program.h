#pragma once

#include <string>
#include <vector>

namespace Host::Cli {

/** The whole program. `words` are its name and its arguments. Returns the exit code. */
int run(const std::vector<std::string>& words);

} // namespace Host::Cli
