#pragma once

#include "Records/Trace.h"

#include <PI/ErrorCode.h>

#include <cstdint>
#include <new>
#include <string_view>
#include <utility>

namespace NAMESPACE_Ostrel {

/** Returns the result of `action`, or an error code when it throws. The host must never see an exception. */
template<typename Action>
std::uint32_t guarded(Action&& action) noexcept
{
    try {
        return std::forward<Action>(action)();
    } catch (const std::bad_alloc&) {
        return PI::ERR_OUT_OF_MEMORY;
    } catch (...) {
        return PI::ERR_GENERAL_FAILURE;
    }
}

/**
 * Traces the exception that `thrower` threw, as a line of `place`. Only for handlers that catch everything.
 */
void traceThrown(const CTracePlace& place, std::string_view thrower) noexcept;

} // namespace NAMESPACE_Ostrel
