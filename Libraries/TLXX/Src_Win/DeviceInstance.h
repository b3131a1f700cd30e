#pragma once

#include <string>

namespace TLXX::Win {

/** The instance identifier of the disk that the last enumeration found at `path`; empty if it found none. */
std::string deviceInstance(const std::string& path);

} // namespace TLXX::Win
