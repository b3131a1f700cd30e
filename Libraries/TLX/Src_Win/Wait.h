#pragma once

#include <TLX/WaitInterval.h>

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>

#include <windows.h>

namespace TLX::Win {

/**
 * Waits, on the process's clock, for the first of `objects` that is signalled and whose index `accept` agrees
 * to. While `accept` refuses, the wait goes on. Returns the position, counted from 1; `TimedOut` at the end
 * of `interval` (null: no end); `Failed`. There are `MOST_EVENTS` objects at most.
 */
std::uint32_t waitForAny(std::span<const HANDLE> objects, const Threading::CWaitInterval* interval,
                         const std::function<bool(std::size_t index)>& accept);

} // namespace TLX::Win
