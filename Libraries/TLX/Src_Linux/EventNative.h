#pragma once

#include <TLX/Event.h>
#include <TLX/Linux/Descriptor.h>
#include <TLX/WaitInterval.h>

#include <atomic>
#include <cstdint>
#include <span>

namespace TLX::Threading {

/**
 * The event's descriptor, readable while the event is signalled. It is a class of its own so that one poll
 * can watch several.
 */
struct CEvent::Native
{
    Native() noexcept;

    /** False when the system refused. */
    bool Valid() const { return m_Descriptor.Valid(); }

    void Signal();

    /** Clears the signal. Returns false when there was none. */
    bool Clear();

    /**
     * Takes the signal after a wait saw the descriptor readable. Returns false when another wait took it
     * first. After true, the thread sees what was written before the signal.
     */
    bool Accept();

    /**
     * Waits for the first of `events` (`MOST_EVENTS` at most) that fires and takes its signal. Returns its
     * position, counted from 1; `TimedOut` at the end of `interval` (null: no end); `Failed`.
     */
    static std::uint32_t WaitForAny(std::span<CEvent* const> events, const CWaitInterval* interval);

    Linux::CDescriptor m_Descriptor;
    std::atomic<bool> m_ManualReset = false;

    /** Orders memory between who signals and who waits: the language knows nothing of descriptors. */
    std::atomic<std::uint32_t> m_Signals = 0;
};

} // namespace TLX::Threading
