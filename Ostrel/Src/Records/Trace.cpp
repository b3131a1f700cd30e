#include "Records/Trace.h"

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

// The analysis does not see the member that takes the lock.
CTracedGuard::CTracedGuard(CFastMutex& mutex, std::string_view name,
                           const CTracePlace& place) TLX_NO_THREAD_SAFETY_ANALYSIS
    : m_Guard(announced(mutex, name, place))
{
    traceWait("After", name, place);
}

CTracedGuard::~CTracedGuard() TLX_NO_THREAD_SAFETY_ANALYSIS = default;

CTracedWait::CTracedWait(CFastMutex& mutex, std::string_view name, std::string_view release,
                         const CTracePlace& place) TLX_NO_THREAD_SAFETY_ANALYSIS : m_Mutex(mutex),
                                                                                   m_Name(name),
                                                                                   m_Release(release),
                                                                                   m_Place(place)
{
    constexpr std::string_view WAIT = "Wait(INFINITE)";
    Trace("Before", WAIT);
    m_Taken = m_Mutex.Wait() == TLX::Threading::WaitResult::Taken;
    Trace("After", WAIT);
}

CTracedWait::~CTracedWait() TLX_NO_THREAD_SAFETY_ANALYSIS
{
    if (!m_Taken)
        return;
    Trace("Before", m_Release);
    m_Mutex.Release();
    Trace("After", m_Release);
}

void CTracedWait::Trace(std::string_view side, std::string_view action) const
{
    if (traceEnabled(TRACE_LOCK))
        OSTREL_TRACE_LINE(TRACE_LOCK, m_Place) << "%s %s.%s" << side << m_Name << action;
}

} // namespace NAMESPACE_Ostrel
