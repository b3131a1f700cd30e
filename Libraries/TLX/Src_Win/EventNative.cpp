#include "EventNative.h"

#include "Wait.h"

#include <vector>

namespace TLX::Threading {

bool CEvent::Native::Clear()
{
    const std::scoped_lock guard(m_Lock);
    return WaitForSingleObject(m_Event.Get(), 0) == WAIT_OBJECT_0 && ResetEvent(m_Event.Get()) != FALSE;
}

std::uint32_t CEvent::Native::WaitForAny(std::span<CEvent* const> events, const CWaitInterval* interval)
{
    std::vector<HANDLE> handles;
    handles.reserve(events.size());
    for (const CEvent* event : events) {
        handles.push_back(Handle(*event));
        if (handles.back() == nullptr)
            return WaitResult::Failed;
    }
    return Win::waitForAny(handles, interval,
                           [events](std::size_t index) { return events[index]->m_Native->Accept(); });
}

} // namespace TLX::Threading
