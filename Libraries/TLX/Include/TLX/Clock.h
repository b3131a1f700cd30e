#pragma once

#include <TLX/Export.h>

#include <cstdint>
#include <memory>

namespace TLX::Threading {
class CEvent;
}

namespace TLX::Misc {

/** Where time comes from. One stands for the whole process; a test puts its own in its place. */
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
     * Asked by a wait that may last until `instant` and can end before. A clock that does not run by itself
     * returns an initialised event that it signals when `Monotonic()` has reached `instant`. Null, as here:
     * the wait has to be timed by the system.
     */
    virtual std::shared_ptr<Threading::CEvent> AlarmAt(std::uint64_t instant);
};

/**
 * Puts `clock` in the system clock's place, or the system clock back (null). Returns what stood before (null:
 * the system clock). The caller keeps `clock` alive while it stands.
 */
TLX_EXPORT IClock* setClock(IClock* clock);

/** The clock that stands now. */
TLX_EXPORT IClock& clock();

/** Milliseconds since 1970-01-01T00:00:00Z. */
TLX_EXPORT std::uint64_t now();

/** Milliseconds on a clock that never steps back. */
TLX_EXPORT std::uint64_t monotonic();

/** Blocks the caller for `duration` milliseconds. */
TLX_EXPORT void pause(std::uint64_t duration);

} // namespace TLX::Misc
