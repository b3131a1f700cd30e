#include "Support/VirtualClock.h"

namespace TestSupport {

CVirtualClock::CVirtualClock(std::uint64_t now) : m_Start(now), m_Former(TLX::Misc::setClock(this)) {}

CVirtualClock::~CVirtualClock()
{
    TLX::Misc::setClock(m_Former);
}

std::uint64_t CVirtualClock::Now()
{
    const std::scoped_lock guard(m_Lock);
    return m_Start + m_Elapsed;
}

std::uint64_t CVirtualClock::Monotonic()
{
    const std::scoped_lock guard(m_Lock);
    return m_Elapsed;
}

void CVirtualClock::SleepUntil(std::uint64_t instant)
{
    const std::scoped_lock guard(m_Lock);
    const std::uint64_t duration = instant > m_Elapsed ? instant - m_Elapsed : 0;
    m_Sleeps.push_back(duration);
    m_Elapsed += duration;
}

void CVirtualClock::Advance(std::uint64_t milliseconds)
{
    const std::scoped_lock guard(m_Lock);
    m_Elapsed += milliseconds;
}

std::vector<std::uint64_t> CVirtualClock::Sleeps() const
{
    const std::scoped_lock guard(m_Lock);
    return m_Sleeps;
}

} // namespace TestSupport
