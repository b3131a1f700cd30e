#include "Facts/DriveCheck.h"

#include "Host/Objects.h"

#include <gmock/gmock.h>

namespace {

using namespace Host::Cli;
using Host::DriveAnswer;
using HostTest::DriveObjects;

DriveAnswer answerOf(const std::string& device, bool answering)
{
    DriveAnswer answer;
    answer.m_DeviceName = device;
    answer.m_Instance = device;
    answer.m_Answering = answering;
    answer.m_SilentRounds = 2;
    return answer;
}

TEST(DriveCheck, HasADriveThatNeverAnswered)
{
    const std::vector<DriveCheck> checks =
        checkDrives(Host::ObjectStore({}, {}, {answerOf("/dev/nvme0n1", false)}), 1);
    ASSERT_EQ(checks.size(), 1U);
    EXPECT_EQ(checks[0].m_Judgement.m_Verdict, Verdict::Critical);
    EXPECT_EQ(checks[0].m_Judgement.m_Reason, "does not answer");
}

TEST(DriveCheck, WarnsOfADriveThatMissedTheFirstRound)
{
    DriveObjects drive(1, "S1", "/dev/nvme0n1");
    drive.remove(PI::PROP_HEALTH_STATUS);
    drive.m_Adapter.m_Properties.push_back(HostTest::property(PI::PROP_HEALTH_STATUS, 1, std::uint32_t{40024},
                                                              std::vector<std::uint32_t>{40024}));
    const Host::ObjectStore store(HostTest::topologyOf({drive}), {}, {answerOf("/dev/nvme0n1", true)});
    EXPECT_EQ(checkDrives(store, 1).at(0).m_Judgement.m_Verdict, Verdict::Ok);
    const DriveCheck missed = checkDrives(store, 1, {"/dev/nvme0n1"}).at(0);
    EXPECT_EQ(missed.m_Judgement.m_Verdict, Verdict::Warning);
    EXPECT_EQ(missed.m_Judgement.m_Reason, "answered only when it was asked again");
}

TEST(DriveCheck, KeepsAWorseVerdictThanThatOfAMissedRound)
{
    const Host::ObjectStore store(HostTest::topologyOf({DriveObjects(1, "S1", "/dev/nvme0n1")}), {},
                                  {answerOf("/dev/nvme0n1", true)});
    EXPECT_EQ(checkDrives(store, 1, {"/dev/nvme0n1"}).at(0).m_Judgement.m_Verdict, Verdict::Critical);
}

} // namespace
