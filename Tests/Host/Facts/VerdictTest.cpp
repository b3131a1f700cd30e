#include "Facts/Verdict.h"

#include <gmock/gmock.h>

namespace {

using namespace Host::Cli;
using enum Verdict;

TEST(Verdict, HasTheNumbersAndWordsOfMonitoringSystems)
{
    EXPECT_EQ(static_cast<int>(Ok), 0);
    EXPECT_EQ(static_cast<int>(Warning), 1);
    EXPECT_EQ(static_cast<int>(Critical), 2);
    EXPECT_EQ(static_cast<int>(Unknown), 3);
    EXPECT_EQ(verdictText(Ok) + verdictText(Warning) + verdictText(Critical) + verdictText(Unknown),
              "OKWARNINGCRITICALUNKNOWN");
}

TEST(Verdict, IsWorstWhenCriticalThenWarningThenUnknown)
{
    constexpr Verdict fromTheWorst[] = {Critical, Warning, Unknown, Ok};
    for (std::size_t a = 0; a < std::size(fromTheWorst); ++a)
        for (std::size_t b = 0; b < std::size(fromTheWorst); ++b)
            EXPECT_EQ(isWorse(fromTheWorst[a], fromTheWorst[b]), a < b) << a << b;
}

TEST(Verdict, FollowsTheCodeOfTheHealth)
{
    EXPECT_EQ(verdictOfCode(40024), Ok);
    EXPECT_EQ(verdictOfCode(40099), Ok);
    EXPECT_EQ(verdictOfCode(40150), Warning);
    EXPECT_EQ(verdictOfCode(40180), Warning);
    EXPECT_EQ(verdictOfCode(40095), Critical);
    EXPECT_EQ(verdictOfCode(0), Unknown);
}

TEST(Verdict, OfADriveNamesTheReasons)
{
    Drive drive;
    drive.m_Health = {40095, "Critical"};
    drive.m_Reasons = {{40459, "Too hot"}, {40452, "Read-only"}};
    EXPECT_EQ(judge(drive).m_Verdict, Critical);
    EXPECT_EQ(judge(drive).m_Reason, "Critical: Too hot, Read-only");
    drive.m_Health = {40024, "Healthy"};
    drive.m_Reasons.clear();
    EXPECT_EQ(judge(drive).m_Verdict, Ok);
    EXPECT_EQ(judge(drive).m_Reason, "Healthy");
}

TEST(Verdict, OfADriveWhoseHealthNobodyKnowsIsUnknown)
{
    Drive drive;
    EXPECT_EQ(judge(drive).m_Verdict, Unknown);
    EXPECT_EQ(judge(drive).m_Reason, "its health is not reported");
    drive.m_Health = {std::nullopt, UNKNOWN_HEALTH};
    EXPECT_EQ(judge(drive).m_Verdict, Unknown);
    EXPECT_EQ(judge(drive).m_Reason, "its health log was not read");
}

} // namespace
