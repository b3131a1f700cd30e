#include "FastMutexNative.h"

namespace TLX::Threading::Native_OS {

std::uint32_t CFastMutex::Native::Wait(std::uint32_t timeout)
{
    switch (WaitForSingleObject(m_Mutex.Get(), timeout)) {
    case WAIT_OBJECT_0:
    case WAIT_ABANDONED: // the lock of a thread that ended without giving it back
        return WaitResult::Taken;
    case WAIT_TIMEOUT:
        return WaitResult::TimedOut;
    default:
        return WaitResult::Failed;
    }
}

} // namespace TLX::Threading::Native_OS
