#include "Ostrel/NVMeDevices.h"
#include "Support/TemporaryFolder.h"
#include "Support/TraceCapture.h"

#include <TLXX/Linux/Sysfs.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <utility>

namespace {

using NAMESPACE_Ostrel::NVMeDevices;
using testing::ElementsAre;
using TestSupport::CCapturedLine;

/** Replaces the system's sysfs by one of the test while it lives. */
class DeviceTree : public testing::Test
{
public:
    DeviceTree() { TLXX::Linux::setSysfsRoot(m_Root.Path()); }
    ~DeviceTree() override { TLXX::Linux::setSysfsRoot(m_Former); }

    /** Adds controller `number` with a namespace, as the kernel lays them out. */
    void AddController(int number) const
    {
        namespace fs = std::filesystem;
        const std::string name = "nvme" + std::to_string(number);
        const fs::path function = "devices/pci0000:00/0000:0" + std::to_string(number) + ":00.0";
        const fs::path controller = function / "nvme" / name;
        fs::create_directories(m_Root.Path() / controller / (name + "n1"));
        fs::create_directories(m_Root.Path() / "bus/pci/drivers/nvme");
        fs::create_directories(m_Root.Path() / "class/nvme");
        fs::create_directory_symlink(m_Root.Path() / "bus/pci/drivers/nvme",
                                     m_Root.Path() / function / "driver");
        fs::create_directory_symlink(m_Root.Path() / function, m_Root.Path() / controller / "device");
        fs::create_directory_symlink(m_Root.Path() / controller, m_Root.Path() / "class/nvme" / name);
        m_Root.Write((controller / "transport").string(), "pcie\n");
        m_Root.Write((controller / "state").string(), "live\n");
        m_Root.Write((controller / "address").string(), "0000:0" + std::to_string(number) + ":00.0\n");
        m_Root.Write((controller / (name + "n1") / "nsid").string(), "1\n");
    }

private:
    std::filesystem::path m_Former = TLXX::Linux::sysfsRoot();

protected:
    TestSupport::CTemporaryFolder m_Root;
};

TEST_F(DeviceTree, WithoutControllersGivesNothing)
{
    NVMeDevices devices;
    EXPECT_FALSE(devices.scan());
    EXPECT_TRUE(devices.empty());
}

TEST_F(DeviceTree, KeepsADiskWhoseControllerHasNoDriver)
{
    AddController(1);
    std::filesystem::remove(m_Root.Path() / "devices/pci0000:00/0000:01:00.0/driver");
    NVMeDevices devices;
    EXPECT_TRUE(devices.scan());
    ASSERT_EQ(devices.size(), 1U);
    EXPECT_EQ(devices[0].deviceName, "/dev/nvme1n1");
    EXPECT_EQ(devices[0].driver, "");
}

TEST_F(DeviceTree, GivesOneElementForEachControllerInOrder)
{
    AddController(1);
    AddController(0);
    NVMeDevices devices;
    const TestSupport::CTraceCapture capture(2 | 16);
    EXPECT_TRUE(devices.scan());
    ASSERT_EQ(devices.size(), 2U);
    EXPECT_EQ(devices[0].deviceName, "/dev/nvme0n1");
    EXPECT_EQ(devices[0].driver, "nvme");
    EXPECT_EQ(devices[1].deviceName, "/dev/nvme1n1");
    EXPECT_EQ(devices[1].driver, "nvme");

    const std::string scan = "NAMESPACE_Ostrel::NVMeDevices::scan";
    const std::string detected = "NAMESPACE_Ostrel::NVMeDevices::addDetected";
    EXPECT_THAT(
        capture.Lines(),
        ElementsAre(CCapturedLine{2, "Ostrel/Src/Ostrel", scan, "ENTER NVMeDevices::scan()"},
                    CCapturedLine{16, "Ostrel/Src/Ostrel", detected,
                                  "Detected NVMe device. deviceName: /dev/nvme0n1, driver: nvme"},
                    CCapturedLine{16, "Ostrel/Src/Ostrel", detected,
                                  "Detected NVMe device. deviceName: /dev/nvme1n1, driver: nvme"},
                    CCapturedLine{2, "Ostrel/Src/Ostrel", scan, "LEAVE NVMeDevices::scan() -> ret 1"}));
}

TEST_F(DeviceTree, ThatLostItsControllersLeavesNothingOfAnEarlierScan)
{
    AddController(0);
    NVMeDevices devices;
    ASSERT_TRUE(devices.scan());
    std::filesystem::remove_all(m_Root.Path() / "class");
    EXPECT_FALSE(devices.scan());
    EXPECT_TRUE(devices.empty());
}

} // namespace
