#include "Facts/DriveKey.h"

#include <gmock/gmock.h>

namespace {

using namespace Host::Cli;
using testing::ElementsAre;
using testing::IsEmpty;

Drive drive(const std::string& serial, const std::string& address, const std::string& device)
{
    Drive result;
    result.m_Serial = serial;
    result.m_PciAddress = address;
    result.m_Device = device;
    return result;
}

TEST(DriveKeyTest, TheSerialNumberIsTheKey)
{
    EXPECT_THAT(driveKeys({drive("A", "0000:01:00.0", "/dev/a"), drive("B", "", "/dev/b")}),
                ElementsAre("A", "B"));
}

TEST(DriveKeyTest, WithoutASerialNumberOfItsOwnTheAddressIs)
{
    EXPECT_THAT(driveKeys({drive("A", "0000:01:00.0", "/dev/a"), drive("", "0000:02:00.0", "/dev/b"),
                           drive("A", "10000:e1:00.0", "/dev/c"), drive("D", "0000:04:00.0", "/dev/d")}),
                ElementsAre("pci-0000:01:00.0", "pci-0000:02:00.0", "pci-10000:e1:00.0", "D"));
}

TEST(DriveKeyTest, WithoutAnAddressTheDeviceIs)
{
    EXPECT_THAT(driveKeys({drive("", "", "/dev/a"), drive("", "", "/dev/b")}),
                ElementsAre("device-/dev/a", "device-/dev/b"));
}

TEST(DriveKeyTest, NoKeyIsGivenTwice)
{
    EXPECT_THAT(
        driveKeys({drive("", "0000:01:00.0", "/dev/a"), drive("pci-0000:01:00.0", "", "/dev/b"),
                   drive("", "0000:01:00.0", "/dev/a"), drive("pci-0000:01:00.0#2", "", "/dev/c")}),
        ElementsAre("pci-0000:01:00.0", "pci-0000:01:00.0#2", "pci-0000:01:00.0#3", "pci-0000:01:00.0#2#2"));
}

TEST(DriveKeyTest, SerialNumbersOfSeveralDevicesAreShared)
{
    const std::vector<SharedSerial> shared =
        sharedSerials({drive("A", "", "/dev/a"), drive("B", "", "/dev/b"), drive("A", "", "/dev/c"),
                       drive("", "", "/dev/d"), drive("", "", "/dev/e"), drive("F", "", "/dev/f"),
                       drive("F", "", "/dev/f")});
    ASSERT_EQ(shared.size(), 1U);
    EXPECT_EQ(shared[0].m_Serial, "A");
    EXPECT_THAT(shared[0].m_Devices, ElementsAre("/dev/a", "/dev/c"));
    EXPECT_THAT(sharedSerials({}), IsEmpty());
}

} // namespace
