#pragma once

#include "Records/Module.h"

#include <TLX/FastMutex.h>
#include <TLX/TraceStreamBuffer.h>

#include <cstdint>
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

/** A place in the source, for trace lines. `OSTREL_HERE` makes the current one. */
struct CTracePlace
{
    std::string_view m_Unit;     ///< the unit's folder in the repository
    std::string_view m_Function; ///< in the compiler's spelling
    std::uint32_t m_Line;
};

/** Holds a lock from construction to destruction and traces before and after the wait. */
class TLX_SCOPED_CAPABILITY CTracedGuard
{
public:
    /** `name` is the lock's name in the trace, `place` is the caller's place. */
    CTracedGuard(TLX::Threading::Native_OS::CFastMutex& mutex, std::string_view name,
                 const CTracePlace& place) TLX_ACQUIRE(mutex);
    ~CTracedGuard() TLX_RELEASE();
    CTracedGuard(const CTracedGuard&) = delete;
    CTracedGuard& operator=(const CTracedGuard&) = delete;

private:
    TLX::Threading::CScopedGuard m_Guard;
};

/**
 * The same for a wait without a time limit that may fail. It also traces before and after the release.
 * `release` is the trace's spelling of that: "Release ()" or "Release()".
 */
class TLX_SCOPED_CAPABILITY CTracedWait
{
public:
    CTracedWait(TLX::Threading::Native_OS::CFastMutex& mutex, std::string_view name, std::string_view release,
                const CTracePlace& place) TLX_ACQUIRE(mutex);
    ~CTracedWait() TLX_RELEASE();
    CTracedWait(const CTracedWait&) = delete;
    CTracedWait& operator=(const CTracedWait&) = delete;

    /** Whether the lock was taken. */
    bool Taken() const { return m_Taken; }

private:
    void Trace(std::string_view side, std::string_view action) const;

    TLX::Threading::Native_OS::CFastMutex& m_Mutex;
    std::string_view m_Name;
    std::string_view m_Release;
    CTracePlace m_Place;
    bool m_Taken;
};

} // namespace NAMESPACE_Ostrel

/** The current place. The build sets `OSTREL_TRACE_UNIT` to the source folder. */
#define OSTREL_HERE                                                                                          \
    NAMESPACE_Ostrel::CTracePlace                                                                            \
    {                                                                                                        \
        OSTREL_TRACE_UNIT, __PRETTY_FUNCTION__, __LINE__                                                     \
    }

/**
 * The current place in a function that works for the plug-in object's `member` (a literal). The trace names
 * that member.
 */
#define OSTREL_WITHIN(member)                                                                                \
    NAMESPACE_Ostrel::CTracePlace                                                                            \
    {                                                                                                        \
        OSTREL_TRACE_UNIT, "NAMESPACE_Ostrel::IPLUGINAPI_IMPL::" member, __LINE__                            \
    }

/** A trace line of `place`. The caller has tested that the mask has its level. */
#define OSTREL_TRACE_LINE(level, place)                                                                      \
    TLX::Internals::CTraceStreamBuffer((level), NAMESPACE_Ostrel::g_ModuleInfo, (place).m_Unit,              \
                                       TLX::Internals::qualifiedName((place).m_Function), (place).m_Line)

/**
 * Begins a trace line of the current function: OSTREL_TRACE(TRACE_FLOW) << "LEAVE Worker() -> %d" << result;
 * The arguments are not evaluated when the level is off.
 */
#define OSTREL_TRACE(level)                                                                                  \
    if (!NAMESPACE_Ostrel::traceEnabled(level)) {                                                            \
    } else                                                                                                   \
        OSTREL_TRACE_LINE(level, OSTREL_HERE)

/** The same as `OSTREL_TRACE`, in a function that works for the plug-in object's `member`. */
#define OSTREL_TRACE_WITHIN(level, member)                                                                   \
    if (!NAMESPACE_Ostrel::traceEnabled(level)) {                                                            \
    } else                                                                                                   \
        OSTREL_TRACE_LINE(level, OSTREL_WITHIN(member))
