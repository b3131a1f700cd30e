#pragma once

#include <cstdint>

/** The numbers that this system has for some errors. */
namespace TestSupport::SystemStatus {

extern const std::uint32_t NO_PERMISSION;
extern const std::uint32_t NO_SUCH_FILE;
extern const std::uint32_t IO_ERROR;

} // namespace TestSupport::SystemStatus
