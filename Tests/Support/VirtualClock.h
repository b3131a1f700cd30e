#pragma once

#include <TLX/Clock.h>
#include <TLX/Event.h>

#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <mutex>
#include <vector>

namespace TestSupport {

/**
 * A clock that stands still until a thread sleeps on it or the test moves it. Replaces the process's clock
 * while it lives.
 */
class CVirtualClock : public TLX::Misc::IClock
{
public:
    /** `now` is in milliseconds since 1970. */
    explicit CVirtualClock(std::uint64_t now = 1'767'225'600'000ULL /* 2026-01-01T00:00:00Z */);
    ~CVirtualClock() override;

    std::uint64_t Now() override;
    std::uint64_t Monotonic() override;

    /** Moves the clock to `instant` at once and records how far it moved. */
    void SleepUntil(std::uint64_t instant) override;

    std::shared_ptr<TLX::Threading::CEvent> AlarmAt(std::uint64_t instant) override;

    /** Moves the clock. Waits whose time is over then end. */
    void Advance(std::uint64_t milliseconds);

    /** How long each sleep was, in milliseconds, in order. */
    std::vector<std::uint64_t> Sleeps() const;

    /** A function that is called at the beginning of each sleep, on the sleeping thread. */
    void OnSleep(std::function<void()> action);

    /**
     * Blocks until `count` waits with a time-out above 0 have begun since the clock was made. Returns how
     * long the last of them may take, in milliseconds.
     */
    std::uint64_t AwaitWait(std::size_t count);

private:
    struct CAlarm
    {
        std::uint64_t m_Instant;
        std::weak_ptr<TLX::Threading::CEvent> m_Event; ///< whether the time of the wait is over
    };

    void MoveTo(std::uint64_t elapsed);

    mutable std::mutex m_Lock;
    std::condition_variable m_WaitBegan;
    std::uint64_t m_Start;
    std::uint64_t m_Elapsed = 0;
    std::vector<std::uint64_t> m_Sleeps;
    std::function<void()> m_OnSleep;
    std::vector<CAlarm> m_Alarms;
    std::vector<std::uint64_t> m_Waits; ///< the length of each timed wait
    TLX::Misc::IClock* m_Former;
};

} // namespace TestSupport
