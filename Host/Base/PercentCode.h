#pragma once

#include <string>
#include <string_view>

namespace Host {

/** `text` as a part of a URL's path or query: with percent signs for all but letters, digits and "-._~". */
std::string percentEncoded(std::string_view text);

} // namespace Host
