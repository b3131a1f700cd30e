#pragma once

#include <cstdint>

namespace Database {

/**
 * How long to wait for somebody else's lock on the file: a quarter of a second in all, and then not at all
 * until some seconds have passed. So a caller with thousands of statements waits no longer than one with a
 * single one.
 */
class CBusyPolicy
{
public:
    static constexpr std::uint64_t STEP = 10; ///< milliseconds between two attempts

    /** Waits up to `longest` milliseconds and returns true, or returns false at once: give up. */
    bool Wait(std::uint64_t longest = STEP);

private:
    std::uint64_t m_Left = 0;       ///< milliseconds still to wait in this period
    std::uint64_t m_PeriodEnds = 0; ///< on the monotonic clock
};

} // namespace Database
