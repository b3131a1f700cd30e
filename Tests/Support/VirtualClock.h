#pragma once

#include <TLX/Clock.h>

#include <cstdint>
#include <mutex>
#include <vector>

namespace TestSupport {

/** A clock that stands still until someone sleeps on it or moves it. Stands for the process's while it lives.
 */
class CVirtualClock : public TLX::Misc::IClock
{
public:
    /** `now` is in milliseconds since 1970. */
    explicit CVirtualClock(std::uint64_t now = 1'767'225'600'000ULL /* 2026-01-01T00:00:00Z */);
    ~CVirtualClock() override;

    std::uint64_t Now() override;
    std::uint64_t Monotonic() override;

    /** Moves the clock to `instant` at once and notes how far it moved. */
    void SleepUntil(std::uint64_t instant) override;

    void Advance(std::uint64_t milliseconds);

    /** How long each sleep was, in milliseconds, in order. */
    std::vector<std::uint64_t> Sleeps() const;

private:
    mutable std::mutex m_Lock;
    std::uint64_t m_Start;
    std::uint64_t m_Elapsed = 0;
    std::vector<std::uint64_t> m_Sleeps;
    TLX::Misc::IClock* m_Former;
};

} // namespace TestSupport
