#include <TLXX/Linux/Uevent.h>

#include <gtest/gtest.h>

#include <random>
#include <string>
#include <vector>

namespace {

using TLXX::Linux::announcesDrives;

std::string message(const std::vector<std::string>& fields)
{
    std::string text = "head@/path";
    for (const std::string& each : fields)
        text += '\0' + each;
    return text + '\0';
}

TEST(UeventTest, KnowsControllersThatComeAndGo)
{
    const std::string path = "DEVPATH=/devices/pci0000:00/0000:00:04.0/nvme/nvme0";
    EXPECT_TRUE(announcesDrives(message({"ACTION=add", path, "SUBSYSTEM=nvme"})));
    EXPECT_TRUE(announcesDrives(message({"ACTION=remove", path, "SUBSYSTEM=nvme"})));
    EXPECT_FALSE(announcesDrives(message({"ACTION=bind", path, "SUBSYSTEM=nvme"})));
    EXPECT_FALSE(announcesDrives(message({"ACTION=add", path, "SUBSYSTEM=nvme-subsystem"})));
    EXPECT_FALSE(announcesDrives(message({"ACTION=add", path, "SUBSYSTEM=pci"})));
}

TEST(UeventTest, KnowsDisksButNotPartitionsOrOtherDisks)
{
    const std::string path = "DEVPATH=/devices/pci0000:00/0000:00:04.0/nvme/nvme0/nvme0n1";
    EXPECT_TRUE(announcesDrives(message({"ACTION=add", path, "SUBSYSTEM=block", "DEVTYPE=disk"})));
    EXPECT_TRUE(announcesDrives(message({"ACTION=remove", path, "SUBSYSTEM=block", "DEVTYPE=disk"})));
    EXPECT_FALSE(announcesDrives(message({"ACTION=change", path, "SUBSYSTEM=block", "DEVTYPE=disk"})));
    EXPECT_FALSE(announcesDrives(
        message({"ACTION=add", path + "/nvme0n1p1", "SUBSYSTEM=block", "DEVTYPE=partition"})));
    EXPECT_FALSE(announcesDrives(
        message({"ACTION=add", "DEVPATH=/devices/virtual/block/loop0", "SUBSYSTEM=block", "DEVTYPE=disk"})));
}

TEST(UeventTest, KnowsAsynchronousEventsOfControllers)
{
    const std::string path = "DEVPATH=/devices/pci0000:00/0000:00:04.0/nvme/nvme0";
    EXPECT_TRUE(announcesDrives(message({"ACTION=change", path, "SUBSYSTEM=nvme", "NVME_AEN=0x00020101"})));
    EXPECT_FALSE(announcesDrives(message({"ACTION=change", path, "SUBSYSTEM=nvme", "NVME_EVENT=connected"})));
    EXPECT_FALSE(announcesDrives(message({"ACTION=change", path, "SUBSYSTEM=block", "NVME_AEN=0x1"})));
}

TEST(UeventTest, TakesFieldsByTheirWholeName)
{
    EXPECT_FALSE(announcesDrives(message({"XACTION=add", "SUBSYSTEM=nvme"})));
    EXPECT_FALSE(announcesDrives(message({"ACTION=add", "SUBSYSTEM2=nvme"})));
    EXPECT_FALSE(announcesDrives(message({"ACTION", "SUBSYSTEM=nvme"})));
}

TEST(UeventTest, BearsWhateverBytesCome)
{
    EXPECT_FALSE(announcesDrives({}));
    EXPECT_FALSE(announcesDrives(std::string_view("\0\0\0", 3)));
    EXPECT_FALSE(announcesDrives("ACTION=ad"));
    // The last field may lack its zero byte.
    EXPECT_TRUE(announcesDrives(std::string_view("x\0ACTION=add\0SUBSYSTEM=nvme", 27)));
    std::mt19937 random(1); // NOLINT(cert-msc32-c,cert-msc51-cpp): the same bytes every time
    for (int round = 0; round < 10'000; ++round) {
        std::string bytes = message({"ACTION=add", "SUBSYSTEM=nvme"});
        for (int change = 0; change < 3; ++change)
            bytes[random() % bytes.size()] = static_cast<char>(random());
        (void)announcesDrives(std::string_view(bytes).substr(random() % bytes.size()));
    }
}

} // namespace
