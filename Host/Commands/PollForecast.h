#pragma once

#include <cstdint>
#include <optional>

namespace Host::Cli {

/** When a plug-in polls next, as far as its counter of polls and its interval tell. Times in milliseconds. */
class PollForecast
{
public:
    /** `count` and `interval` are the plug-in's as it shows them `now`, on a clock that never steps back. */
    void update(std::uint64_t count, std::uint64_t interval, std::uint64_t now);

    /** When the next poll should be over. */
    std::uint64_t next() const { return m_Next; }

private:
    std::optional<std::uint64_t> m_Count;
    std::uint64_t m_Next = 0;
};

} // namespace Host::Cli
