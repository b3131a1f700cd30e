#pragma once

#include <cstdint>
#include <optional>

namespace Host::Cli {

/**
 * Computes when a plug-in polls next, from its count of polls and its interval. Times are in milliseconds.
 */
class PollForecast
{
public:
    /**
     * `count` and `interval` are the values that the plug-in shows at `now`. `now` is from a clock that never
     * goes back.
     */
    void update(std::uint64_t count, std::uint64_t interval, std::uint64_t now);

    /** When the next poll is expected to be finished. */
    std::uint64_t next() const { return m_Next; }

private:
    std::optional<std::uint64_t> m_Count;
    std::uint64_t m_Next = 0;
};

} // namespace Host::Cli
