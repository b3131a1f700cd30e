#include "EventNative.h"

#include <new>
#include <utility>

namespace TLX::Threading {

CEvent::CEvent() noexcept = default;
CEvent::~CEvent() = default;

std::uint32_t CEvent::Init(bool initiallySignalled, bool manualReset)
{
    // A repeated call keeps the native state, so that threads that already wait still see its signals.
    if (!m_Native) {
        std::unique_ptr<Native> native(new (std::nothrow) Native);
        if (!native || !native->Valid())
            return WaitResult::Failed;
        try {
            m_Native = std::move(native);
        } catch (const std::bad_alloc&) {
            return WaitResult::Failed;
        }
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

std::function<void()> CEvent::Signaller() const
{
    if (!m_Native)
        return {};
    return [native = m_Native] { native->Signal(); };
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
