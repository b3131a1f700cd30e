#include "Ostrel/Trace.h"

namespace NAMESPACE_Ostrel {
namespace {

using TLX::Threading::Native_OS::CFastMutex;

void traceWait(std::string_view side, std::string_view name, const CTracePlace& place)
{
    if (traceEnabled(TRACE_LOCK))
        OSTREL_TRACE_LINE(TRACE_LOCK, place) << "%s %s.Wait (sg)" << side << name;
}

CFastMutex& announced(CFastMutex& mutex, std::string_view name, const CTracePlace& place)
{
    traceWait("Before", name, place);
    return mutex;
}

} // namespace

// The member that does the locking is out of the analysis's sight.
CTracedGuard::CTracedGuard(CFastMutex& mutex, std::string_view name,
                           const CTracePlace& place) TLX_NO_THREAD_SAFETY_ANALYSIS
    : m_Guard(announced(mutex, name, place))
{
    traceWait("After", name, place);
}

CTracedGuard::~CTracedGuard() TLX_NO_THREAD_SAFETY_ANALYSIS = default;

} // namespace NAMESPACE_Ostrel
