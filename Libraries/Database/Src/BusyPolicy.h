#pragma once

#include <cstdint>

namespace Database {

/**
 * How long to wait for a lock on the file that another process holds. All waits together take at most a
 * quarter of a second; after that no call waits for some seconds. So a caller with thousands of statements
 * waits no longer than one with a single statement.
 */
class CBusyPolicy
{
public:
    static constexpr std::uint64_t STEP = 10; ///< milliseconds between two attempts

    /**
     * Waits up to `longest` milliseconds and returns true. Returns false at once when the caller must give
     * up.
     */
    bool Wait(std::uint64_t longest = STEP);

private:
    std::uint64_t m_Left = 0;       ///< milliseconds left to wait in this period
    std::uint64_t m_PeriodEnds = 0; ///< on the monotonic clock
};

} // namespace Database
