#pragma once

#include <TLX/Event.h>
#include <TLX/Win/UniqueHandle.h>

namespace TLX::Threading {

/** The event's handle. Apart, so that one wait can watch several. */
struct CEvent::Native
{
    Native(bool initiallySignalled, bool manualReset) noexcept
        : m_Event(CreateEventW(nullptr, manualReset, initiallySignalled, nullptr)), m_ManualReset(manualReset)
    {}

    TLX::Win::CKernelObject m_Event;
    bool m_ManualReset;
};

} // namespace TLX::Threading
