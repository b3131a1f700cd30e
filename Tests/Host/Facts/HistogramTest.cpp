#include "Facts/Histogram.h"

#include <gtest/gtest.h>

namespace Host::Cli {
namespace {

TEST(HistogramTest, CountsADurationInTheFirstBucketThatHoldsIt)
{
    Histogram histogram;
    histogram.add(0);
    histogram.add(0.001); // A duration equal to a limit counts in that limit's bucket.
    histogram.add(0.0011);
    histogram.add(5);
    histogram.add(5.1);
    EXPECT_EQ(histogram.m_Counts.front(), 2U);
    EXPECT_EQ(histogram.m_Counts.at(1), 1U);
    EXPECT_EQ(histogram.m_Counts.at(11), 1U);
    EXPECT_EQ(histogram.m_Counts.at(12), 1U);
    EXPECT_DOUBLE_EQ(histogram.m_Sum, 10.1021);
}

} // namespace
} // namespace Host::Cli
