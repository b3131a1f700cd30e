#pragma once

#include <TLX/Export.h>

#include <cstdint>
#include <memory>

namespace TLX::Threading {
class CEvent;
}

namespace TLX::Misc {

/** The source of time for the whole process. A test can replace it. */
class TLX_EXPORT IClock
{
public:
    IClock() = default;
    virtual ~IClock();
    IClock(const IClock&) = delete;
    IClock& operator=(const IClock&) = delete;

    /** Milliseconds since 1970-01-01T00:00:00Z. */
    virtual std::uint64_t Now() = 0;

    /** Milliseconds on a clock that never steps back. */
    virtual std::uint64_t Monotonic() = 0;

    /** Blocks the caller until `Monotonic()` has reached `instant`. */
    virtual void SleepUntil(std::uint64_t instant) = 0;

    /**
     * Called by a wait that may last until `instant` and may end earlier. A clock that does not run by itself
     * returns an initialised event, which it signals when `Monotonic()` has reached `instant`. Null, as here,
     * means that the system times the wait.
     */
    virtual std::shared_ptr<Threading::CEvent> AlarmAt(std::uint64_t instant);
};

/**
 * Replaces the system clock by `clock`; null restores the system clock. Returns the clock that was set before
 * (null: the system clock). The caller keeps `clock` alive while it is set.
 */
TLX_EXPORT IClock* setClock(IClock* clock);

/** The clock in use. */
TLX_EXPORT IClock& clock();

/** Milliseconds since 1970-01-01T00:00:00Z. */
TLX_EXPORT std::uint64_t now();

/** Milliseconds on a clock that never steps back. */
TLX_EXPORT std::uint64_t monotonic();

/** Blocks the caller for `duration` milliseconds. */
TLX_EXPORT void pause(std::uint64_t duration);

} // namespace TLX::Misc
