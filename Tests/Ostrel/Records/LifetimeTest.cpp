#include "Records/Lifetime.h"

#include "Support/GroupingLocale.h"
#include "Support/VirtualClock.h"

#include <gtest/gtest.h>

#include <vector>

using namespace NAMESPACE_Ostrel;

namespace {

TEST(Lifetime, TakesTheFirstFamilyWhoseTextOccursAnywhere)
{
    const std::vector<PI::CNVMeLifeTimeData> table = {
        {"PM1733a", 7, 30}, {"PM1733", 6, 20}, {"SSDPF2KX", 8, 10}};
    EXPECT_EQ(lifetimeRating(table, "SAMSUNG PM1733a 960"), 30U);
    EXPECT_EQ(lifetimeRating(table, "SAMSUNG PM1733 960"), 20U);
    EXPECT_EQ(lifetimeRating(table, "INTEL SSDPF2KX038TZ"), 10U);
    EXPECT_EQ(lifetimeRating(table, "SSDPF2KX and PM1733"), 20U);
}

TEST(Lifetime, CutsTheTextToItsSignificantCharacters)
{
    const std::vector<PI::CNVMeLifeTimeData> table = {{"SSDPF2KX038", 8, 10}, {"ABC", 99, 20}};
    EXPECT_EQ(lifetimeRating(table, "INTEL SSDPF2KX999"), 10U);
    EXPECT_EQ(lifetimeRating(table, "xABCx"), 20U);
}

TEST(Lifetime, IsUnratedWithoutAFamily)
{
    const std::vector<PI::CNVMeLifeTimeData> table = {{"SSDPF2KX", 8, 10}};
    EXPECT_EQ(lifetimeRating(table, "ssdpf2kx"), 1U);
    EXPECT_EQ(lifetimeRating(table, ""), 1U);
    EXPECT_EQ(lifetimeRating({}, "SSDPF2KX"), 1U);
}

TEST(Lifetime, LeavesWhatAHundredLacksAndNeverLessThanNothing)
{
    EXPECT_EQ(percentLeft(0), 100U);
    EXPECT_EQ(percentLeft(3), 97U);
    EXPECT_EQ(percentLeft(100), 0U);
    EXPECT_EQ(percentLeft(101), 0U);
    EXPECT_EQ(percentLeft(0xFFFFFFFF), 0U);
}

TEST(Lifetime, CountsDataUnitsInBytesWithoutOverflow)
{
    EXPECT_EQ(bytesOfDataUnits(0), 0U);
    EXPECT_EQ(bytesOfDataUnits(1), 512'000U);
    EXPECT_EQ(bytesOfDataUnits(36'028'797'018'963), 18'446'744'073'709'056'000U);
    EXPECT_EQ(bytesOfDataUnits(36'028'797'018'964), UNKNOWN_COUNTER - 1);
    EXPECT_EQ(bytesOfDataUnits(UNKNOWN_COUNTER - 1), UNKNOWN_COUNTER - 1);
    EXPECT_EQ(bytesOfDataUnits(UNKNOWN_COUNTER), UNKNOWN_COUNTER);
}

class CEndOfLife : public testing::Test
{
protected:
    CEndOfLife()
    {
        m_Adapter.m_PowerOnHours = 1000;
        m_Adapter.m_DataUnitsWritten = 0;
        m_Adapter.m_LifetimeRating = 1;
    }

    TestSupport::CVirtualClock m_Clock; // 2026-01-01
    CNVMeAdapter m_Adapter;
};

TEST_F(CEndOfLife, IsEmptyWhenNobodyKnowsTheHours)
{
    m_Adapter.m_PowerOnHours = UNKNOWN_COUNTER;
    EXPECT_EQ(endOfLifeDate(m_Adapter), "");
}

TEST_F(CEndOfLife, FollowsTheWear)
{
    m_Adapter.m_ADNormalized = 60; // 40 percent in 1000 hours leave 1500 hours, which are 62.5 days
    EXPECT_EQ(endOfLifeDate(m_Adapter), "2026-03-04");
    m_Clock.Advance(24ULL * 3'600'000);
    EXPECT_EQ(endOfLifeDate(m_Adapter), "2026-03-05");
}

TEST_F(CEndOfLife, IsADateWhateverTheProcessesLocale)
{
    m_Adapter.m_ADNormalized = 60;
    const TestSupport::CGroupingLocale locale;
    EXPECT_EQ(endOfLifeDate(m_Adapter), "2026-03-04");
}

TEST_F(CEndOfLife, FollowsTheBytesWritten)
{
    m_Adapter.m_LifetimeRating = 3;
    m_Adapter.m_DataUnitsWritten = 2'147'484; // 1 TiB in 1000 hours leaves just under 2000 hours
    EXPECT_EQ(endOfLifeDate(m_Adapter), "2026-03-25");
}

TEST_F(CEndOfLife, DoesNotFollowFromAnUnknownAmountWritten)
{
    m_Adapter.m_LifetimeRating = 3;
    m_Adapter.m_DataUnitsWritten = UNKNOWN_COUNTER;
    EXPECT_EQ(endOfLifeDate(m_Adapter), "2125-12-08");
    m_Adapter.m_DataUnitsWritten = UNKNOWN_COUNTER - 1;
    EXPECT_EQ(endOfLifeDate(m_Adapter), "2026-01-01") << "more than any rating";
}

TEST_F(CEndOfLife, IsAHundredYearsAheadWhenNothingWearsOut)
{
    EXPECT_EQ(endOfLifeDate(m_Adapter), "2125-12-08");
}

} // namespace
