#pragma once

#include "Ostrel/Module.h"

#include <TLX/FastMutex.h>
#include <TLX/TraceStreamBuffer.h>

#include <cstdint>
#include <source_location>
#include <string_view>

namespace NAMESPACE_Ostrel {

/** The bits of the trace mask. */
enum TraceLevel : std::uint32_t
{
    TRACE_FLOW = 2,       ///< entry, exit, results
    TRACE_WAKE = 4,       ///< wake reasons of the worker, topology, counts of property requests
    TRACE_LOCK = 8,       ///< lock traffic
    TRACE_PROGRESS = 16,  ///< progress and scanned values
    TRACE_DATABASE = 128, ///< results of the database; any higher bit of the mask shows them too
};

/** Whether lines of `level` are written now. */
inline bool traceEnabled(TraceLevel level)
{
    const std::uint32_t bits =
        level == TRACE_DATABASE ? ~(std::uint32_t{TRACE_DATABASE} - 1) : std::uint32_t{level};
    return (g_ModuleInfo.TraceMask() & bits) != 0;
}

/** Holds a lock from construction to destruction and traces both sides of the wait as the calling function's.
 */
class TLX_SCOPED_CAPABILITY CTracedGuard
{
public:
    /** `name` is the lock's name in the trace, `sourceUnit` the caller's `OSTREL_TRACE_UNIT`. */
    CTracedGuard(TLX::Threading::Native_OS::CFastMutex& mutex, std::string_view name,
                 std::string_view sourceUnit, std::source_location caller = std::source_location::current())
        TLX_ACQUIRE(mutex);
    ~CTracedGuard() TLX_RELEASE();
    CTracedGuard(const CTracedGuard&) = delete;
    CTracedGuard& operator=(const CTracedGuard&) = delete;

private:
    TLX::Threading::CScopedGuard m_Guard;
};

} // namespace NAMESPACE_Ostrel

/**
 * Begins a trace line of the current function: OSTREL_TRACE(TRACE_FLOW) << "LEAVE Worker() -> %d" << result;
 * The arguments are not evaluated when the level is off. `OSTREL_TRACE_UNIT` is the source folder, set by the
 * build.
 */
#define OSTREL_TRACE(level)                                                                                  \
    if (!NAMESPACE_Ostrel::traceEnabled(level)) {                                                            \
    } else                                                                                                   \
        TLX::Internals::CTraceStreamBuffer(                                                                  \
            (level), NAMESPACE_Ostrel::g_ModuleInfo, OSTREL_TRACE_UNIT,                                      \
            TLX::Internals::qualifiedName(std::source_location::current().function_name()),                  \
            std::source_location::current().line())
