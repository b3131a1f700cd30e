#pragma once

#include "Records/Trace.h"

#include <PI/ErrorCode.h>

#include <cstdint>
#include <new>
#include <string_view>
#include <utility>

namespace NAMESPACE_Ostrel {

/** The result of `action`, or the one that stands for what it threw. The host must never see an exception. */
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

/** Traces what `thrower` threw, as a line of `place`. Only for handlers that catch everything. */
void traceThrown(const CTracePlace& place, std::string_view thrower) noexcept;

} // namespace NAMESPACE_Ostrel
