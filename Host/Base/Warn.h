#pragma once

#include <functional>
#include <string>

namespace Host {

/** Tells the administrator what is wrong but ends nothing: a sentence or more. */
using Warn = std::function<void(const std::string&)>;

} // namespace Host
