#pragma once

#include <cstdint>

#include <windows.h>

namespace TLX::Win {

/** Waits for one kernel object, at most `timeout` milliseconds. Returns a `WaitResult`. */
std::uint32_t waitFor(HANDLE object, std::uint32_t timeout);

} // namespace TLX::Win
