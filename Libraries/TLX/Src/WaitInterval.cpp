#include <TLX/Clock.h>
#include <TLX/WaitInterval.h>

namespace TLX::Threading {

CWaitInterval::CWaitInterval(std::uint64_t duration)
{
    Restart(duration);
}

void CWaitInterval::Restart(std::uint64_t duration)
{
    m_End = Misc::monotonic() + duration;
}

std::uint64_t CWaitInterval::Remaining() const
{
    const std::uint64_t current = Misc::monotonic();
    return m_End > current ? m_End - current : 0;
}

} // namespace TLX::Threading
