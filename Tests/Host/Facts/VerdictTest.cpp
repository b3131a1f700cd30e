#include "Facts/Verdict.h"

#include <PI/StateCode.h>
#include <TLXX/NvmeQuery.h>

#include <gmock/gmock.h>

namespace {

using namespace Host::Cli;
using enum Verdict;

constexpr std::uint64_t LOOK = 1000000;

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
    EXPECT_EQ(verdictOfCode(PI::HEALTH_HEALTHY), Ok);
    EXPECT_EQ(verdictOfCode(PI::DRIVE_OPERATIONAL), Ok);
    EXPECT_EQ(verdictOfCode(PI::HEALTH_DEGRADED), Warning);
    EXPECT_EQ(verdictOfCode(PI::DRIVE_WARNING), Warning);
    EXPECT_EQ(verdictOfCode(PI::HEALTH_CRITICAL), Critical);
    EXPECT_EQ(verdictOfCode(0), Unknown);
}

TEST(Verdict, OfADriveNamesTheReasons)
{
    Drive drive;
    drive.m_Health = {PI::HEALTH_CRITICAL, "Critical"};
    drive.m_Reasons = {{PI::REASON_TEMPERATURE, "Too hot"}, {PI::REASON_READ_ONLY, "Read-only"}};
    EXPECT_EQ(judge(drive, LOOK).m_Verdict, Critical);
    EXPECT_EQ(judge(drive, LOOK).m_Reason, "Critical: Too hot, Read-only");
    drive.m_Health = {PI::HEALTH_HEALTHY, "Healthy"};
    drive.m_Reasons.clear();
    EXPECT_EQ(judge(drive, LOOK).m_Verdict, Ok);
    EXPECT_EQ(judge(drive, LOOK).m_Reason, "Healthy");
}

TEST(Verdict, OfADriveWhoseHealthNobodyKnowsIsUnknown)
{
    Drive drive;
    EXPECT_EQ(judge(drive, LOOK).m_Verdict, Unknown);
    EXPECT_EQ(judge(drive, LOOK).m_Reason, "its health is not reported");
    drive.m_Health = {std::nullopt, UNKNOWN_HEALTH};
    EXPECT_EQ(judge(drive, LOOK).m_Verdict, Unknown);
    EXPECT_EQ(judge(drive, LOOK).m_Reason, "its health log was not read");
}

TEST(Verdict, OfASilentDriveIsAWarningAtFirstAndCriticalAfterTwoRoundsOrHalfAMinute)
{
    Drive drive;
    drive.m_Health = {PI::HEALTH_HEALTHY, "Healthy"};
    drive.m_Answer.emplace();
    drive.m_Answer->m_Answering = true;
    EXPECT_EQ(judge(drive, LOOK).m_Verdict, Ok);
    drive.m_Answer->m_Answering = false;
    drive.m_Answer->m_Status = TLXX::STATUS_NO_ANSWER;
    drive.m_Answer->m_SilentRounds = 1;
    drive.m_Answer->m_SilentSince = LOOK - 29999;
    EXPECT_EQ(judge(drive, LOOK).m_Verdict, Warning);
    EXPECT_EQ(judge(drive, LOOK).m_Reason, "does not answer: " + TLXX::statusText(TLXX::STATUS_NO_ANSWER));
    EXPECT_EQ(judge(drive, LOOK + 1).m_Verdict, Critical);
    drive.m_Answer->m_SilentSince = LOOK;
    drive.m_Answer->m_SilentRounds = 2;
    EXPECT_EQ(judge(drive, LOOK).m_Verdict, Critical);
    drive.m_Answer->m_SilentSince.reset();
    drive.m_Answer->m_SilentRounds = 0;
    EXPECT_EQ(judge(drive, LOOK).m_Verdict, Warning);
}

} // namespace
