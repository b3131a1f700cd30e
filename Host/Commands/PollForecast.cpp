#include "Commands/PollForecast.h"

#include "Base/Time.h"

namespace Host::Cli {

void PollForecast::update(std::uint64_t count, std::uint64_t interval, std::uint64_t now)
{
    constexpr std::uint64_t patience = MILLISECONDS_A_SECOND;
    // If a poll is late, it has not begun or is still running.
    if (m_Count != count)
        m_Next = now + interval;
    else if (m_Next <= now)
        m_Next = now + patience;
    m_Count = count;
}

} // namespace Host::Cli
