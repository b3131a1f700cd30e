#include "EventNative.h"

#include "Wait.h"

#include <TLX/Waiter.h>

#include <array>
#include <functional>

namespace TLX::Threading {

bool CEvent::Native::Clear()
{
    const std::scoped_lock guard(m_Lock);
    return WaitForSingleObject(m_Event.Get(), 0) == WAIT_OBJECT_0 && ResetEvent(m_Event.Get()) != FALSE;
}

std::uint32_t CEvent::Native::WaitForAny(std::span<CEvent* const> events, const CWaitInterval* interval)
{
    std::array<HANDLE, MOST_EVENTS> handles{};
    std::size_t count = 0;
    for (const CEvent* event : events) {
        const HANDLE handle = Handle(*event);
        if (handle == nullptr)
            return WaitResult::Failed;
        handles.at(count++) = handle;
    }
    const auto accept = [events](std::size_t index) { return events[index]->m_Native->Accept(); };
    return Win::waitForAny(std::span(handles).first(count), interval, std::ref(accept));
}

} // namespace TLX::Threading
