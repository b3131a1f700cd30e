#include "EventNative.h"

#include <new>

namespace TLX::Threading {

CEvent::CEvent() noexcept = default;
CEvent::~CEvent() = default;

std::uint32_t CEvent::Init(bool initiallySignalled, bool manualReset)
{
    // The handle survives a repeated call, so that whoever waits for it is not left with a closed one. An
    // event of the other kind needs another handle.
    if (m_Native && m_Native->m_ManualReset == manualReset) {
        const HANDLE event = m_Native->m_Event.Get();
        return (initiallySignalled ? SetEvent(event) : ResetEvent(event)) != 0 ? WaitResult::Taken
                                                                               : WaitResult::Failed;
    }
    std::unique_ptr<Native> native(new (std::nothrow) Native(initiallySignalled, manualReset));
    if (!native || !native->m_Event.Valid())
        return WaitResult::Failed;
    m_Native = std::move(native);
    return WaitResult::Taken;
}

void CEvent::Set()
{
    if (m_Native)
        SetEvent(m_Native->m_Event.Get());
}

void CEvent::Reset()
{
    if (m_Native)
        ResetEvent(m_Native->m_Event.Get());
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
