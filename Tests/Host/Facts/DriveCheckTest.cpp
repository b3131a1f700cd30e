#include "Facts/DriveCheck.h"

#include "Host/Objects.h"
#include "Support/SystemStatus.h"

#include <PI/StateCode.h>

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
        checkDrives(Snapshot(Host::ObjectStore({}, {}, {answerOf("/dev/nvme0n1", false)}), 1, 1), 1);
    ASSERT_EQ(checks.size(), 1U);
    EXPECT_EQ(checks[0].m_Judgement.m_Verdict, Verdict::Critical);
    EXPECT_EQ(checks[0].m_Judgement.m_Reason, "does not answer");
}

TEST(DriveCheck, WarnsOfADriveThatMissedTheFirstRound)
{
    DriveObjects drive(1, "S1", "/dev/nvme0n1");
    drive.remove(PI::PROP_HEALTH_STATUS);
    drive.m_Adapter.m_Properties.push_back(
        HostTest::property(PI::PROP_HEALTH_STATUS, 1, std::uint32_t{PI::HEALTH_HEALTHY},
                           std::vector<std::uint32_t>{PI::HEALTH_HEALTHY}));
    const Snapshot snapshot(
        Host::ObjectStore(HostTest::topologyOf({drive}), {}, {answerOf("/dev/nvme0n1", true)}), 1, 1);
    EXPECT_EQ(checkDrives(snapshot, 1).at(0).m_Judgement.m_Verdict, Verdict::Ok);
    const DriveCheck missed = checkDrives(snapshot, 1, {"/dev/nvme0n1"}).at(0);
    EXPECT_EQ(missed.m_Judgement.m_Verdict, Verdict::Warning);
    EXPECT_EQ(missed.m_Judgement.m_Reason, "answered only when it was asked again");
}

TEST(DriveCheck, KeepsAWorseVerdictThanThatOfAMissedRound)
{
    const Snapshot snapshot(Host::ObjectStore(HostTest::topologyOf({DriveObjects(1, "S1", "/dev/nvme0n1")}),
                                              {}, {answerOf("/dev/nvme0n1", true)}),
                            1, 1);
    EXPECT_EQ(checkDrives(snapshot, 1, {"/dev/nvme0n1"}).at(0).m_Judgement.m_Verdict, Verdict::Critical);
}

TEST(DriveCheck, EndsWithTheDisksThatThisUserMayNotOpen)
{
    std::vector<TLXX::CControllerState> controllers;
    for (const char* name : {"nvme0", "nvme1", "nvme2"}) {
        TLXX::CControllerState& controller = controllers.emplace_back();
        controller.m_AccessPath = std::string("/dev/") + name;
        controller.m_DeviceName = controller.m_AccessPath + "n1";
        controller.m_AccessStatus = TestSupport::SystemStatus::NO_PERMISSION;
    }
    controllers[1].m_Location = TLXX::CPciLocation{0, 2, 0, 0};
    const Snapshot snapshot(
        Host::ObjectStore(HostTest::topologyOf({DriveObjects(1, "S1", "/dev/nvme0n1")}), controllers), 1, 1);
    const std::vector<DriveCheck> checks = checkDrives(snapshot, 1);
    ASSERT_EQ(checks.size(), 3U) << "the first disk is shown, so it is not refused";
    EXPECT_EQ(checks[0].m_Key, "S1");
    EXPECT_EQ(checks[1].m_Key, "pci-0000:02:00.0");
    EXPECT_EQ(checks[1].m_Drive->m_Device, "/dev/nvme1n1");
    EXPECT_EQ(checks[1].m_Judgement.m_Verdict, Verdict::Unknown);
    EXPECT_EQ(checks[1].m_Judgement.m_Reason, "no permission to open /dev/nvme1");
    EXPECT_EQ(checks[2].m_Key, "device-/dev/nvme2n1");
}

TEST(DriveCheck, SharesTheDrivesOfTheSnapshotAndKeepsThem)
{
    std::vector<DriveCheck> checks;
    {
        const Snapshot snapshot(
            Host::ObjectStore(HostTest::topologyOf({DriveObjects(1, "S1", "/dev/nvme0n1")})), 1, 1);
        checks = checkDrives(snapshot, 1);
        EXPECT_EQ(checks.at(0).m_Drive.get(), &snapshot.m_Drives.at(0));
    }
    EXPECT_EQ(checks.at(0).m_Drive->m_Serial, "S1");
}

} // namespace
