#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace Host::Cli {

/** Counts durations by their length. Plain data. */
struct Histogram
{
    /** The upper limits of the buckets, in seconds. A last bucket has everything that is longer. */
    static constexpr std::array<double, 12> LIMITS = {0.001, 0.0025, 0.005, 0.01, 0.025, 0.05,
                                                      0.1,   0.25,   0.5,   1,    2.5,   5};

    void add(double seconds);

    std::array<std::uint64_t, LIMITS.size() + 1> m_Counts = {}; ///< of each bucket alone
    double m_Sum = 0;                                           ///< of all durations, in seconds
};

} // namespace Host::Cli
