#pragma once

#include <TLX/Export.h>
#include <TLX/WaitResult.h>

#include <cstdint>
#include <functional>
#include <memory>

namespace TLX::Threading {

/**
 * A flag that threads wait for. An auto-reset event ends one wait and is then clear; two signals without a
 * wait in between count once. A manual-reset event stays set until `Reset`. Every operation is safe before
 * `Init`: a wait then fails at once, the others do nothing.
 */
class TLX_EXPORT CEvent
{
public:
    CEvent() noexcept;
    ~CEvent();
    CEvent(const CEvent&) = delete;
    CEvent& operator=(const CEvent&) = delete;

    /**
     * Makes the event ready, in the given state and of the given kind. Returns `WaitResult::Taken`, or
     * `WaitResult::Failed` when the system refuses. May be repeated; an earlier signal is then forgotten.
     */
    [[nodiscard]] std::uint32_t Init(bool initiallySignalled, bool manualReset);

    /** Signals the event. Safe from any thread. */
    void Set();
    /** Clears the signal. Safe from any thread. */
    void Reset();

    /** Waits at most `timeout` milliseconds. Returns `Taken`, `TimedOut` or `Failed`. */
    [[nodiscard]] std::uint32_t Wait(std::uint32_t timeout = NO_TIME_LIMIT);

    /**
     * A function that signals this event from then on, from any thread. It may outlive the event and then
     * does nothing. Empty before `Init`.
     */
    std::function<void()> Signaller() const;

    /** The event's native state; only this library knows it. */
    struct Native;

private:
    std::shared_ptr<Native> m_Native;
};

} // namespace TLX::Threading
