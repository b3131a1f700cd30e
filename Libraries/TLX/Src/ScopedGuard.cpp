#include <TLX/FastMutex.h>

namespace TLX::Threading {

// The analysis is switched off inside, because it cannot see that the lock is held only after a successful
// wait.
CScopedGuard::CScopedGuard(Native_OS::CFastMutex& mutex) TLX_NO_THREAD_SAFETY_ANALYSIS
    : m_Mutex(mutex),
      m_Taken(mutex.Wait() == WaitResult::Taken)
{}

CScopedGuard::~CScopedGuard() TLX_NO_THREAD_SAFETY_ANALYSIS
{
    if (m_Taken)
        m_Mutex.Release();
}

} // namespace TLX::Threading
