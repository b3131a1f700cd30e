#pragma once

#include <TLX/Event.h>
#include <TLX/Export.h>
#include <TLX/WaitInterval.h>

#include <cstdint>
#include <initializer_list>
#include <utility>
#include <vector>

namespace TLX::Threading {

/** Waits for several events at once. The caller keeps the events alive as long as the waiter. */
class TLX_EXPORT CWaiter
{
public:
    CWaiter(std::initializer_list<CEvent*> events) : m_Events(events) {}
    explicit CWaiter(std::vector<CEvent*> events) : m_Events(std::move(events)) {}

    /**
     * Sleeps until one of the events has fired or `interval` has run out. Returns the position of the first
     * in the list that has fired, counted from 1, and takes the signal of that one alone;
     * `WaitResult::TimedOut` when none has; `WaitResult::Failed` when one of them is not initialised or the
     * system refuses.
     */
    [[nodiscard]] std::uint32_t Wait(const CWaitInterval& interval);

private:
    std::vector<CEvent*> m_Events;
};

} // namespace TLX::Threading
