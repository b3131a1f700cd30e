#include "BusyPolicy.h"

#include <TLX/Clock.h>

#include <algorithm>

namespace Database {

namespace {

constexpr std::uint64_t LONGEST_WAIT = 250;
constexpr std::uint64_t PERIOD = 5000;

} // namespace

bool CBusyPolicy::Wait(std::uint64_t longest)
{
    const std::uint64_t now = TLX::Misc::monotonic();
    if (now >= m_PeriodEnds) {
        m_PeriodEnds = now + PERIOD;
        m_Left = LONGEST_WAIT;
    }
    if (m_Left == 0)
        return false;
    TLX::Misc::pause(std::min(longest, m_Left));
    // A pause may last longer than it was asked to.
    m_Left -= std::min(m_Left, std::max<std::uint64_t>(1, TLX::Misc::monotonic() - now));
    return true;
}

} // namespace Database
