#include "Facts/Silence.h"

#include "Base/Time.h"
#include "Host/Objects.h"

#include <TLXX/NvmeQuery.h>

#include <gmock/gmock.h>

namespace {

using namespace Host::Cli;
using Host::DriveAnswer;
using HostTest::DriveObjects;

constexpr std::uint64_t DAY = 86'400'000;
constexpr std::uint64_t NOW = 20'000 * DAY + DAY / 2;

DriveAnswer silent()
{
    DriveAnswer answer;
    answer.m_DeviceName = "/dev/nvme3n1";
    answer.m_Instance = "3";
    answer.m_SerialNumber = "S3";
    answer.m_Model = "MODEL";
    answer.m_FirmwareRevision = "F";
    answer.m_Driver = "nvme";
    answer.m_Location = TLXX::CPciLocation{0, 3, 0, 0};
    answer.m_Status = TLXX::STATUS_NO_ANSWER;
    return answer;
}

TEST(Silence, IsThatOfADriveWhichDoesNotAnswerAndMayBeAsked)
{
    DriveAnswer answer = silent();
    EXPECT_TRUE(isSilent(answer));
    answer.m_Answering = true;
    EXPECT_FALSE(isSilent(answer));
    EXPECT_FALSE(isSilent(Drive{}));
    EXPECT_THAT(silentInstances({silent(), answer}), testing::ElementsAre("3"));
}

TEST(Silence, IsToldWithItsTimeAndReason)
{
    DriveAnswer answer = silent();
    EXPECT_EQ(silenceText(answer, NOW), "does not answer");
    answer.m_SilentSince = NOW;
    EXPECT_EQ(silenceText(answer, NOW), "does not answer") << "it never did";
    answer.m_LastAnswer = NOW - 1;
    EXPECT_EQ(silenceText(answer, NOW), "does not answer since " + Host::timeOfDayText(NOW));
    EXPECT_EQ(silenceText(answer, NOW + 2 * DAY), "does not answer since " + Host::localTimeText(NOW));
    EXPECT_EQ(silenceReason(answer, NOW), "does not answer since " + Host::timeOfDayText(NOW) + ": " +
                                              TLXX::statusText(TLXX::STATUS_NO_ANSWER));
}

TEST(Silence, OfADriveThatNeverAnsweredMakesARowFromWhatTheSystemSays)
{
    DriveAnswer other = silent();
    other.m_DeviceName = "/dev/nvme4n1";
    other.m_Answering = true;
    const Host::ObjectStore store(HostTest::topologyOf({DriveObjects(1, "S1", "/dev/nvme1n1")}), {},
                                  {silent(), other});
    const std::vector<Drive> drives = joinDrives(store);
    ASSERT_EQ(drives.size(), 2U);
    EXPECT_FALSE(drives[0].m_Answer);
    EXPECT_FALSE(drives[1].m_AdapterId);
    EXPECT_EQ(drives[1].m_Device, "/dev/nvme3n1");
    EXPECT_EQ(drives[1].m_Serial, "S3");
    EXPECT_EQ(drives[1].m_Model, "MODEL");
    EXPECT_EQ(drives[1].m_Firmware, "F");
    EXPECT_EQ(drives[1].m_PciAddress, "0000:03:00.0");
    EXPECT_FALSE(drives[1].m_Health);
    for (const char* name : {"s3", "nvme3n1", "/dev/nvme3n1", "0000:03:00.0"})
        EXPECT_TRUE(isUnheard(drives[1], name)) << name;
    EXPECT_FALSE(isUnheard(drives[1], "S1"));
    EXPECT_FALSE(isUnheard(drives[0], "S1"));
}

TEST(Silence, OfADriveThatAnsweredKeepsItsRow)
{
    DriveAnswer answer = silent();
    answer.m_LastAnswer = NOW;
    const Host::ObjectStore store(HostTest::topologyOf({DriveObjects(1, "S3", "/dev/nvme3n1")}), {},
                                  {answer});
    const std::vector<Drive> drives = joinDrives(store);
    ASSERT_EQ(drives.size(), 1U);
    EXPECT_TRUE(isSilent(drives[0]));
    EXPECT_TRUE(drives[0].m_Health);
}

TEST(Silence, IsNotThatOfTheDriveWhichWasAtTheDeviceBefore)
{
    const Host::ObjectStore store(HostTest::topologyOf({DriveObjects(1, "S2", "/dev/nvme3n1")}), {},
                                  {silent()});
    const std::vector<Drive> drives = joinDrives(store);
    ASSERT_EQ(drives.size(), 2U);
    EXPECT_FALSE(isSilent(drives[0]));
    EXPECT_EQ(drives[1].m_Serial, "S3");
}

} // namespace
