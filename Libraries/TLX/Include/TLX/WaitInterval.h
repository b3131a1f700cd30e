#pragma once

#include <TLX/Export.h>

#include <cstdint>

namespace TLX::Threading {

/** How long a waiter waits: up to a point in time that stays where it is until the next `Restart`. */
class TLX_EXPORT CWaitInterval
{
public:
    /** Runs for `duration` milliseconds from now. */
    explicit CWaitInterval(std::uint64_t duration);

    /** Begins anew, for `duration` milliseconds from now. */
    void Restart(std::uint64_t duration);

    /** When it runs out, in milliseconds of `TLX::Misc::monotonic()`. */
    std::uint64_t End() const { return m_End; }

    /** The milliseconds that are left. */
    std::uint64_t Remaining() const;

private:
    std::uint64_t m_End = 0;
};

} // namespace TLX::Threading
