#pragma once

#include <string>
#include <string_view>

namespace TLX::Internals {

/** The text with control characters and bytes outside UTF-8 as "\n", "\r", "\t" or "\xNN". */
std::string escapeControls(std::string_view text);

} // namespace TLX::Internals
