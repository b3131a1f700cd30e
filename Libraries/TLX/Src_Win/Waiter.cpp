#include "EventNative.h"

#include <TLX/Clock.h>
#include <TLX/Waiter.h>

#include <algorithm>
#include <memory>
#include <vector>

namespace TLX::Threading {

std::uint32_t CEvent::Native::WaitForAny(std::span<CEvent* const> events, const CWaitInterval* interval)
{
    std::vector<HANDLE> handles;
    handles.reserve(events.size() + 1);
    for (const CEvent* event : events) {
        if (!event->m_Native)
            return WaitResult::Failed;
        handles.push_back(event->m_Native->m_Event.Get());
    }

    // A clock that does not run by itself says when the time is over; the system's timer does otherwise.
    std::shared_ptr<CEvent> alarm;
    if (interval != nullptr)
        alarm = Misc::clock().AlarmAt(interval->End());
    if (alarm)
        handles.push_back(alarm->m_Native->m_Event.Get());

    DWORD limit = INFINITE;
    if (interval != nullptr && !alarm)
        limit = static_cast<DWORD>(std::min<std::uint64_t>(interval->Remaining(), INFINITE - 1));
    // The system takes the signal of the first handle that has fired, and of that one alone.
    const DWORD result =
        WaitForMultipleObjects(static_cast<DWORD>(handles.size()), handles.data(), FALSE, limit);
    if (result == WAIT_TIMEOUT)
        return WaitResult::TimedOut;
    if (result >= WAIT_OBJECT_0 + handles.size())
        return WaitResult::Failed;
    const std::uint32_t index = result - WAIT_OBJECT_0;
    return index < events.size() ? index + 1 : WaitResult::TimedOut;
}

std::uint32_t CWaiter::Wait(const CWaitInterval& interval)
{
    return CEvent::Native::WaitForAny(m_Events, &interval);
}

} // namespace TLX::Threading
