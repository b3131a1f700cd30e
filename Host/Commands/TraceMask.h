#pragma once

#include "Plugins/HostSetup.h"

#include <cstdint>
#include <optional>
#include <string_view>

namespace Host::Cli {

/** A trace mask: decimal, or hexadecimal after "0x". */
std::optional<std::uint32_t> parseMask(std::string_view text);

/**
 * Takes "MASK" for every module, or "MODULE=MASK" for the module with that number. Returns false for any
 * other text.
 */
bool addTraceMask(std::string_view text, TraceOptions& trace);

} // namespace Host::Cli
