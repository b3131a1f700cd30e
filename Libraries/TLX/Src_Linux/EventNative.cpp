#include "EventNative.h"

#include <TLX/Clock.h>
#include <TLX/Waiter.h>

#include <array>
#include <cerrno>
#include <memory>

#include <poll.h>
#include <sys/eventfd.h>
#include <time.h>

namespace TLX::Threading {
namespace {

timespec remainingTime(const CWaitInterval& interval)
{
    constexpr std::uint64_t NANOSECONDS_A_MILLISECOND = 1'000'000;
    const std::uint64_t remaining = interval.Remaining();
    timespec time{};
    time.tv_sec = static_cast<time_t>(remaining / 1000);
    time.tv_nsec = static_cast<long>(remaining % 1000 * NANOSECONDS_A_MILLISECOND);
    return time;
}

} // namespace

CEvent::Native::Native() noexcept : m_Descriptor(eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC)) {}

void CEvent::Native::Signal()
{
    m_Signals.fetch_add(1, std::memory_order_release);
    // Fails only when the counter is full; the event is signalled then anyway.
    (void)eventfd_write(m_Descriptor.Get(), 1);
}

bool CEvent::Native::Clear()
{
    eventfd_t signals = 0;
    return eventfd_read(m_Descriptor.Get(), &signals) == 0;
}

bool CEvent::Native::Accept()
{
    const bool taken = m_ManualReset || Clear();
    (void)m_Signals.load(std::memory_order_acquire);
    return taken;
}

std::uint32_t CEvent::Native::WaitForAny(std::span<CEvent* const> events, const CWaitInterval* interval)
{
    std::array<pollfd, MOST_EVENTS + 1> entries{};
    nfds_t count = 0;
    for (const CEvent* event : events) {
        if (!event->m_Native)
            return WaitResult::Failed;
        entries.at(count++) = {event->m_Native->m_Descriptor.Get(), POLLIN, 0};
    }

    // When the clock does not run by itself, its event ends the wait; otherwise the system's timer does.
    std::shared_ptr<CEvent> alarm;
    if (interval != nullptr)
        alarm = Misc::clock().AlarmAt(interval->End());
    if (alarm)
        entries.at(count++) = {alarm->m_Native->m_Descriptor.Get(), POLLIN, 0};

    for (;;) {
        timespec limit{};
        const bool limited = interval != nullptr && !alarm;
        if (limited)
            limit = remainingTime(*interval);
        const int ready = ppoll(entries.data(), count, limited ? &limit : nullptr, nullptr);
        if (ready < 0 && errno == EINTR)
            continue;
        if (ready < 0)
            return WaitResult::Failed;
        for (std::uint32_t index = 0; index < events.size(); ++index)
            if (entries[index].revents != 0 && events[index]->m_Native->Accept())
                return index + 1;
        if (ready == 0 || (alarm && entries.at(count - 1).revents != 0))
            return WaitResult::TimedOut;
    }
}

} // namespace TLX::Threading
