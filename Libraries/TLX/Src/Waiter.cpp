#include "EventNative.h"

#include <TLX/Waiter.h>

namespace TLX::Threading {

std::uint32_t CWaiter::Wait(const CWaitInterval& interval)
{
    return CEvent::Native::WaitForAny(m_Events, &interval);
}

} // namespace TLX::Threading
