#pragma once

#include <TLXX/Export.h>

#include <string_view>

namespace TLXX::Linux {

/**
 * Whether a message of the kernel says that an NVMe controller or disk has come or gone, or that a controller
 * announced an asynchronous event. `message` is a head "ACTION@PATH" and then "KEY=VALUE" fields, each ended
 * by a zero byte. Any bytes are safe.
 */
TLXX_EXPORT bool announcesDrives(std::string_view message);

} // namespace TLXX::Linux
