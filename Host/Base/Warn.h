#pragma once

#include <functional>
#include <string>

namespace Host {

/** Gets whole sentences that tell the administrator what is wrong. Does not end the command. */
using Warn = std::function<void(const std::string&)>;

} // namespace Host
