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

/**
 * The most events that a waiter takes. Windows waits for 64 objects at once, and a clock may need one of
 * them.
 */
inline constexpr std::size_t MOST_EVENTS = 63;

/**
 * Waits for several events at once. The caller keeps the events alive as long as the waiter. A wait allocates
 * no memory, so a thread can wait in places where no handler would catch an exception.
 */
class TLX_EXPORT CWaiter
{
public:
    /** Throws `std::length_error` when there are more than `MOST_EVENTS`. */
    explicit CWaiter(std::span<CEvent* const> events);
    CWaiter(std::initializer_list<CEvent*> events) : CWaiter(std::span(events.begin(), events.size())) {}

    /**
     * Sleeps until one of the events has fired or `interval` has ended. Returns the position, counted from 1,
     * of the first event in the list that has fired, and takes the signal of that one alone. Returns
     * `WaitResult::TimedOut` when none has fired, and `WaitResult::Failed` when one of them is not
     * initialised or the system refuses.
     */
    [[nodiscard]] std::uint32_t Wait(const CWaitInterval& interval);

    /** The same without a time limit. */
    [[nodiscard]] std::uint32_t Wait();

private:
    std::array<CEvent*, MOST_EVENTS> m_Events{};
    std::size_t m_Count;
};

} // namespace TLX::Threading
