#include "Wait.h"

#include "EventNative.h"

#include <TLX/Clock.h>
#include <TLX/Waiter.h>

#include <algorithm>
#include <array>
#include <memory>

namespace TLX::Win {

using Threading::CEvent;
using Threading::CWaitInterval;
namespace WaitResult = Threading::WaitResult;

std::uint32_t waitForAny(std::span<const HANDLE> objects, const CWaitInterval* interval,
                         const std::function<bool(std::size_t index)>& accept)
{
    std::array<HANDLE, MAXIMUM_WAIT_OBJECTS> handles{};
    static_assert(handles.size() == Threading::MOST_EVENTS + 1);
    std::copy(objects.begin(), objects.end(), handles.begin());
    auto count = static_cast<DWORD>(objects.size());
    // When the clock does not run by itself, its event ends the wait; otherwise the system's timer does.
    std::shared_ptr<CEvent> alarm;
    if (interval != nullptr)
        alarm = Misc::clock().AlarmAt(interval->End());
    if (alarm)
        handles.at(count++) = CEvent::Native::Handle(*alarm);

    const bool timedBySystem = interval != nullptr && !alarm;
    for (;;) {
        DWORD limit = INFINITE;
        if (timedBySystem)
            limit = static_cast<DWORD>(std::min<std::uint64_t>(interval->Remaining(), INFINITE - 1));
        const DWORD result = WaitForMultipleObjects(count, handles.data(), FALSE, limit);
        // The system's timer has larger steps than the clock and may fire one step early.
        if (result == WAIT_TIMEOUT && timedBySystem && interval->Remaining() > 0)
            continue;
        if (result == WAIT_TIMEOUT)
            return WaitResult::TimedOut;
        if (result >= WAIT_OBJECT_0 + count)
            return WaitResult::Failed;
        const std::uint32_t index = result - WAIT_OBJECT_0;
        if (index == objects.size())
            return WaitResult::TimedOut;
        if (accept(index))
            return index + 1;
    }
}

} // namespace TLX::Win
