#include <TLXX/SystemTime.h>

#include <gtest/gtest.h>

#include <limits>
#include <ostream>

namespace {

struct CDateCase
{
    std::uint64_t m_Instant;
    std::int32_t m_Year;
    std::int32_t m_Month;
    std::int32_t m_Day;
};

std::ostream& operator<<(std::ostream& stream, const CDateCase& value)
{
    return stream << value.m_Instant;
}

class SystemTimeTest : public testing::TestWithParam<CDateCase>
{};

TEST_P(SystemTimeTest, GivesTheUtcDate)
{
    std::int32_t year = 0;
    std::int32_t month = 0;
    std::int32_t day = 0;
    TLXX::CSystemTime_Win::GetDate(GetParam().m_Instant, year, month, day);
    EXPECT_EQ(year, GetParam().m_Year);
    EXPECT_EQ(month, GetParam().m_Month);
    EXPECT_EQ(day, GetParam().m_Day);
}

INSTANTIATE_TEST_SUITE_P(
    Dates, SystemTimeTest,
    testing::Values(CDateCase{0, 1970, 1, 1}, CDateCase{86'399'999, 1970, 1, 1},
                    CDateCase{86'400'000, 1970, 1, 2}, CDateCase{951'782'400'000, 2000, 2, 29},
                    CDateCase{951'868'799'999, 2000, 2, 29}, CDateCase{951'868'800'000, 2000, 3, 1},
                    CDateCase{4'107'542'400'000, 2100, 3, 1}, CDateCase{4'107'542'399'999, 2100, 2, 28},
                    CDateCase{1'767'225'600'000, 2026, 1, 1}, CDateCase{1'767'225'599'999, 2025, 12, 31}));

INSTANTIATE_TEST_SUITE_P(Clamp, SystemTimeTest,
                         testing::Values(CDateCase{253'402'214'399'999, 9999, 12, 30},
                                         CDateCase{253'402'300'799'999, 9999, 12, 31},
                                         CDateCase{253'402'300'800'000, 9999, 12, 31},
                                         CDateCase{std::uint64_t{1} << 63U, 9999, 12, 31},
                                         CDateCase{std::numeric_limits<std::uint64_t>::max(), 9999, 12, 31}));

} // namespace
