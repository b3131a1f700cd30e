#pragma once

#include <TLXX/Export.h>

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

namespace TLXX {

/**
 * The text in a field that a drive filled. It is at most `field` long, cut at the first NUL and trimmed of
 * white space at both ends. Every byte outside printable ASCII is replaced by '?'. Drives are not trusted to
 * keep to any of this.
 */
TLXX_EXPORT std::string boundedText(std::span<const std::uint8_t> field);

} // namespace TLXX
