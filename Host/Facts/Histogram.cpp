#include "Facts/Histogram.h"

#include <algorithm>

namespace Host::Cli {

void Histogram::add(double seconds)
{
    const auto* limit = std::lower_bound(LIMITS.begin(), LIMITS.end(), seconds);
    ++m_Counts.at(static_cast<std::size_t>(limit - LIMITS.begin()));
    m_Sum += seconds;
}

} // namespace Host::Cli
