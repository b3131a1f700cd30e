#pragma once

#include <TLX/Event.h>
#include <TLX/WaitInterval.h>
#include <TLX/Win/UniqueHandle.h>

#include <atomic>
#include <cstdint>
#include <mutex>
#include <span>

namespace TLX::Threading {

/**
 * The event's handle, signalled while the event is. The system's event is always one with manual reset, so
 * that a repeated `Init` can change the kind while threads wait for it.
 */
struct CEvent::Native
{
    Native() noexcept : m_Event(CreateEventW(nullptr, TRUE, FALSE, nullptr)) {}

    /** False when the system refused. */
    bool Valid() const { return m_Event.Valid(); }

    void Signal() { SetEvent(m_Event.Get()); }

    /** Clears the signal. Returns false when there was none. */
    bool Clear();

    /** Takes the signal after a wait saw it. Returns false when another wait took it first. */
    bool Accept() { return m_ManualReset || Clear(); }

    /** The handle to wait for; null before `Init`. */
    static HANDLE Handle(const CEvent& event)
    {
        return event.m_Native ? event.m_Native->m_Event.Get() : nullptr;
    }

    /**
     * Waits for the first of `events` (`MOST_EVENTS` at most) that fires and takes its signal. Returns its
     * position, counted from 1; `TimedOut` at the end of `interval` (null: no end); `Failed`.
     */
    static std::uint32_t WaitForAny(std::span<CEvent* const> events, const CWaitInterval* interval);

    TLX::Win::CKernelObject m_Event;
    std::atomic<bool> m_ManualReset = false;
    std::mutex m_Lock; ///< held while the signal is tested and taken
};

} // namespace TLX::Threading
