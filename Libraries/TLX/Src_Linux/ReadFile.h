#pragma once

#include <TLX/Linux/Descriptor.h>

#include <cstddef>
#include <optional>
#include <string>

namespace TLX::Misc {

/** Flags that open a file for reading without waiting for another process. */
extern const int READ_WITHOUT_WAITING;

/** The bytes of an open file; none when it is no regular file, or has more than `largest` bytes. */
std::optional<std::string> readFile(const Linux::CDescriptor& file, std::size_t largest);

} // namespace TLX::Misc
