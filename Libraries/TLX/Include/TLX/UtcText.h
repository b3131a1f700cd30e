#pragma once

#include <TLX/Export.h>

#include <cstdint>
#include <string>

namespace TLX::Misc {

/**
 * An instant, given in milliseconds since 1970-01-01T00:00:00Z, as text such as "2026-01-01T00:00:00.000Z",
 * whatever the process's locale and time zone. Instants after the year 9999 are shown as its end.
 */
TLX_EXPORT std::string utcText(std::uint64_t instant);

} // namespace TLX::Misc
