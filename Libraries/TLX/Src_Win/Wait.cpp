#include "Wait.h"

#include "EventNative.h"

#include <TLX/Clock.h>

#include <algorithm>
#include <memory>
#include <vector>

namespace TLX::Win {

using Threading::CEvent;
using Threading::CWaitInterval;
namespace WaitResult = Threading::WaitResult;

std::uint32_t waitForAny(std::span<const HANDLE> objects, const CWaitInterval* interval,
                         const std::function<bool(std::size_t index)>& accept)
{
    std::vector<HANDLE> handles(objects.begin(), objects.end());
    // A clock that does not run by itself says when the time is over; the system's timer does otherwise.
    std::shared_ptr<CEvent> alarm;
    if (interval != nullptr)
        alarm = Misc::clock().AlarmAt(interval->End());
    if (alarm)
        handles.push_back(CEvent::Native::Handle(*alarm));

    const bool timedBySystem = interval != nullptr && !alarm;
    for (;;) {
        DWORD limit = INFINITE;
        if (timedBySystem)
            limit = static_cast<DWORD>(std::min<std::uint64_t>(interval->Remaining(), INFINITE - 1));
        const DWORD result =
            WaitForMultipleObjects(static_cast<DWORD>(handles.size()), handles.data(), FALSE, limit);
        // The system's timer counts in larger steps than the clock and may be early by one.
        if (result == WAIT_TIMEOUT && timedBySystem && interval->Remaining() > 0)
            continue;
        if (result == WAIT_TIMEOUT)
            return WaitResult::TimedOut;
        if (result >= WAIT_OBJECT_0 + handles.size())
            return WaitResult::Failed;
        const std::uint32_t index = result - WAIT_OBJECT_0;
        if (index == objects.size())
            return WaitResult::TimedOut;
        if (accept(index))
            return index + 1;
    }
}

} // namespace TLX::Win
