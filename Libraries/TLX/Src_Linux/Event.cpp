#include "EventNative.h"

#include <new>

#include <sys/eventfd.h>

namespace TLX::Threading {

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
    CEvent* const self = this;
    if (timeout == NO_TIME_LIMIT)
        return Native::WaitForAny({&self, 1}, nullptr);
    const CWaitInterval interval(timeout);
    return Native::WaitForAny({&self, 1}, &interval);
}

} // namespace TLX::Threading
