#pragma once

#include <cstdint>

/** Numbers that this system gives to what goes wrong. */
namespace TestSupport::SystemStatus {

extern const std::uint32_t NO_PERMISSION;
extern const std::uint32_t NO_SUCH_FILE;
extern const std::uint32_t IO_ERROR;

} // namespace TestSupport::SystemStatus
