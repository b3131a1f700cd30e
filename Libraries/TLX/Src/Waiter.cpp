#include "EventNative.h"

#include <TLX/Waiter.h>

#include <algorithm>
#include <stdexcept>

namespace TLX::Threading {

CWaiter::CWaiter(std::span<CEvent* const> events) : m_Count(events.size())
{
    if (events.size() > m_Events.size())
        throw std::length_error("a waiter waits for 63 events at most");
    std::copy(events.begin(), events.end(), m_Events.begin());
}

std::uint32_t CWaiter::Wait(const CWaitInterval& interval)
{
    return CEvent::Native::WaitForAny(std::span(m_Events).first(m_Count), &interval);
}

std::uint32_t CWaiter::Wait()
{
    return CEvent::Native::WaitForAny(std::span(m_Events).first(m_Count), nullptr);
}

} // namespace TLX::Threading
