#include "Ostrel/Guarded.h"

#include <exception>

namespace NAMESPACE_Ostrel {

void traceThrown(const CTracePlace& place, std::string_view thrower) noexcept
{
    if (!traceEnabled(TRACE_FLOW))
        return;
    try {
        throw;
    } catch (const std::exception& exception) {
        OSTREL_TRACE_LINE(TRACE_FLOW, place) << "%s threw: %s" << thrower << exception.what();
    } catch (...) {
        OSTREL_TRACE_LINE(TRACE_FLOW, place) << "%s threw something unknown" << thrower;
    }
}

} // namespace NAMESPACE_Ostrel
