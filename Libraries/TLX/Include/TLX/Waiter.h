#pragma once

#include <TLX/Event.h>
#include <TLX/Export.h>
#include <TLX/WaitInterval.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <initializer_list>
#include <span>

namespace TLX::Threading {

/** How many events a waiter takes: Windows waits for 64 objects at once, one of which a clock may need. */
inline constexpr std::size_t MOST_EVENTS = 63;

/**
 * Waits for several events at once. The caller keeps the events alive as long as the waiter. Needs no memory
 * but its own, so that a thread can wait where nothing would catch an exception.
 */
class TLX_EXPORT CWaiter
{
public:
    /** Throws `std::length_error` when there are more than `MOST_EVENTS`. */
    explicit CWaiter(std::span<CEvent* const> events);
    CWaiter(std::initializer_list<CEvent*> events) : CWaiter(std::span(events.begin(), events.size())) {}

    /**
     * Sleeps until one of the events has fired or `interval` has run out. Returns the position of the first
     * in the list that has fired, counted from 1, and takes the signal of that one alone;
     * `WaitResult::TimedOut` when none has; `WaitResult::Failed` when one of them is not initialised or the
     * system refuses.
     */
    [[nodiscard]] std::uint32_t Wait(const CWaitInterval& interval);

    /** The same without a time limit. */
    [[nodiscard]] std::uint32_t Wait();

private:
    std::array<CEvent*, MOST_EVENTS> m_Events{};
    std::size_t m_Count;
};

} // namespace TLX::Threading
