#include <TLX/Clock.h>
#include <TLX/Event.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <cstddef>
#include <limits>
#include <new>
#include <thread>

namespace TLX::Misc {
namespace {

using std::chrono::milliseconds;

template<typename Clock>
std::uint64_t millisecondsOf()
{
    return static_cast<std::uint64_t>(
        std::chrono::duration_cast<milliseconds>(Clock::now().time_since_epoch()).count());
}

class CSystemClock final : public IClock
{
public:
    std::uint64_t Now() override { return millisecondsOf<std::chrono::system_clock>(); }
    std::uint64_t Monotonic() override { return millisecondsOf<std::chrono::steady_clock>(); }

    void SleepUntil(std::uint64_t instant) override
    {
        // Sleeps in pieces, because the nanoseconds of a far instant do not fit the library's counters.
        constexpr std::uint64_t LONGEST_SLEEP = 3'600'000;
        for (std::uint64_t current = Monotonic(); current < instant; current = Monotonic())
            std::this_thread::sleep_for(milliseconds(std::min(instant - current, LONGEST_SLEEP)));
    }
};

std::atomic<IClock*> g_Clock = nullptr;

} // namespace

IClock::~IClock() = default;

std::shared_ptr<Threading::CEvent> IClock::AlarmAt(std::uint64_t /*instant*/)
{
    return nullptr;
}

IClock* setClock(IClock* clock)
{
    return g_Clock.exchange(clock, std::memory_order_acq_rel);
}

IClock& clock()
{
    // Never destroyed: threads may still ask for the time while the process ends. It needs no heap memory,
    // because a wait must not allocate any.
    alignas(CSystemClock) static std::byte room[sizeof(CSystemClock)];
    static IClock& systemClock = *new (room) CSystemClock;
    IClock* const replacement = g_Clock.load(std::memory_order_acquire);
    return replacement != nullptr ? *replacement : systemClock;
}

std::uint64_t now()
{
    return clock().Now();
}

std::uint64_t monotonic()
{
    return clock().Monotonic();
}

void pause(std::uint64_t duration)
{
    IClock& current = clock();
    const std::uint64_t start = current.Monotonic();
    current.SleepUntil(start + std::min(duration, std::numeric_limits<std::uint64_t>::max() - start));
}

} // namespace TLX::Misc
