#pragma once

#include <TLX/Export.h>

#include <cstdint>

namespace TLX::Threading {

/** The limit of a wait: a point in time that does not change until the next `Restart`. */
class TLX_EXPORT CWaitInterval
{
public:
    /** Ends `duration` milliseconds from now. */
    explicit CWaitInterval(std::uint64_t duration);

    /** Sets a new end, `duration` milliseconds from now. */
    void Restart(std::uint64_t duration);

    /** Its end, in milliseconds of `TLX::Misc::monotonic()`. */
    std::uint64_t End() const { return m_End; }

    /** The milliseconds that remain. */
    std::uint64_t Remaining() const;

private:
    std::uint64_t m_End = 0;
};

} // namespace TLX::Threading
