#pragma once

#include <TLX/Event.h>
#include <TLX/WaitInterval.h>
#include <TLX/Win/UniqueHandle.h>

#include <cstdint>
#include <span>

namespace TLX::Threading {

/** The event's handle. Apart, so that one wait can watch several. */
struct CEvent::Native
{
    Native(bool initiallySignalled, bool manualReset) noexcept
        : m_Event(CreateEventW(nullptr, manualReset, initiallySignalled, nullptr)), m_ManualReset(manualReset)
    {}

    /**
     * Waits for the first of `events` that fires and takes its signal. Returns its position, counted from 1;
     * `TimedOut` at the end of `interval` (null: no end); `Failed`.
     */
    static std::uint32_t WaitForAny(std::span<CEvent* const> events, const CWaitInterval* interval);

    TLX::Win::CKernelObject m_Event;
    bool m_ManualReset;
};

} // namespace TLX::Threading
