#pragma once

#include <cstdint>

namespace Host::Cli {

inline constexpr std::uint64_t MILLISECONDS_A_SECOND = 1000;

} // namespace Host::Cli
