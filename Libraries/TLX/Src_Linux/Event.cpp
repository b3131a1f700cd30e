#include "EventNative.h"

#include <algorithm>
#include <cerrno>
#include <chrono>
#include <new>
#include <optional>

#include <poll.h>
#include <sys/eventfd.h>
#include <time.h>

namespace TLX::Threading {
namespace {

using std::chrono::nanoseconds;
using std::chrono::steady_clock;

/** The time that a wait may still take; without limit when it was given none. */
class CRemainingTime
{
public:
    explicit CRemainingTime(std::uint32_t timeout)
    {
        if (timeout != NO_TIME_LIMIT)
            m_Deadline = steady_clock::now() + std::chrono::milliseconds(timeout);
    }

    /** Null: no limit. Points into this object. */
    const timespec* Get()
    {
        if (!m_Deadline)
            return nullptr;
        const nanoseconds left = *m_Deadline - steady_clock::now();
        const nanoseconds remaining = std::max(left, nanoseconds::zero());
        const auto seconds = std::chrono::floor<std::chrono::seconds>(remaining);
        m_Remaining.tv_sec = seconds.count();
        m_Remaining.tv_nsec = (remaining - seconds).count();
        return &m_Remaining;
    }

private:
    std::optional<steady_clock::time_point> m_Deadline;
    timespec m_Remaining{};
};

} // namespace

CEvent::Native::Native() noexcept : m_Descriptor(eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC)) {}

void CEvent::Native::Signal()
{
    // Fails only when the counter is full, and then the event is signalled anyway.
    (void)eventfd_write(m_Descriptor.Get(), 1);
}

bool CEvent::Native::Clear()
{
    eventfd_t signals = 0;
    return eventfd_read(m_Descriptor.Get(), &signals) == 0;
}

CEvent::CEvent() noexcept = default;
CEvent::~CEvent() = default;

std::uint32_t CEvent::Init(bool initiallySignalled, bool manualReset)
{
    // The descriptor survives a repeated call, so that whoever waits for it is not left with a closed one.
    if (!m_Native) {
        std::unique_ptr<Native> native(new (std::nothrow) Native);
        if (!native || !native->m_Descriptor.Valid())
            return WaitResult::Failed;
        m_Native = std::move(native);
    }
    m_Native->m_ManualReset = manualReset;
    m_Native->Clear();
    if (initiallySignalled)
        m_Native->Signal();
    return WaitResult::Taken;
}

void CEvent::Set()
{
    if (m_Native)
        m_Native->Signal();
}

void CEvent::Reset()
{
    if (m_Native)
        m_Native->Clear();
}

std::uint32_t CEvent::Wait(std::uint32_t timeout)
{
    if (!m_Native)
        return WaitResult::Failed;
    CRemainingTime remaining(timeout);
    pollfd entry{m_Native->m_Descriptor.Get(), POLLIN, 0};
    for (;;) {
        const int ready = ppoll(&entry, 1, remaining.Get(), nullptr);
        if (ready == 0)
            return WaitResult::TimedOut;
        if (ready < 0 && errno != EINTR)
            return WaitResult::Failed;
        if (ready > 0 && m_Native->Accept())
            return WaitResult::Taken;
    }
}

} // namespace TLX::Threading
