#include "Ostrel/NVMeDevices.h"

#include "Support/FakeDrives.h"
#include "Support/TraceCapture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace {

using NAMESPACE_Ostrel::NVMeDevice;
using NAMESPACE_Ostrel::NVMeDevices;
using testing::ElementsAre;
using TestSupport::CCapturedLine;
using TestSupport::CFakeDrive;
using TestSupport::CFakeDrives;

std::vector<std::string> names(const NVMeDevices& devices)
{
    std::vector<std::string> names;
    for (const NVMeDevice& device : devices)
        names.push_back(device.deviceName);
    return names;
}

} // namespace

TEST(NVMeDevices, AMachineWithoutDrivesGivesNothing)
{
    const CFakeDrives drives;
    NVMeDevices devices;
    EXPECT_FALSE(devices.scan());
    EXPECT_TRUE(devices.empty());
}

TEST(NVMeDevices, AreListedInDiscoveryOrder)
{
    CFakeDrives drives;
    drives.Add(CFakeDrive(4));
    drives.Add(CFakeDrive(1));
    NVMeDevices devices;
    EXPECT_TRUE(devices.scan());
    EXPECT_THAT(names(devices), ElementsAre("/dev/nvme4n1", "/dev/nvme1n1"));
    EXPECT_EQ(devices[0].driver, "nvme");
    EXPECT_THAT(drives.Queries(), testing::IsEmpty());
}

TEST(NVMeDevices, AScanKeepsNoElementOfTheOneBefore)
{
    CFakeDrives drives;
    drives.Add(CFakeDrive(0));
    drives.Add(CFakeDrive(1));
    NVMeDevices devices;
    ASSERT_TRUE(devices.scan());
    ASSERT_TRUE(devices[1].queryIdentifyController());

    drives.Remove("/dev/nvme0n1");
    EXPECT_TRUE(devices.scan());
    EXPECT_THAT(names(devices), ElementsAre("/dev/nvme1n1"));
    EXPECT_EQ(devices[0].identifyController.VID, 0) << "what was queried before the scan must be gone";

    drives.Remove("/dev/nvme1n1");
    EXPECT_FALSE(devices.scan());
    EXPECT_TRUE(devices.empty());
}

TEST(NVMeDevices, AScanTracesEachDriveItFinds)
{
    CFakeDrives drives;
    drives.Add(CFakeDrive(0));
    NVMeDevices devices;
    const std::string scan = "NAMESPACE_Ostrel::NVMeDevices::scan";
    {
        const TestSupport::CTraceCapture capture(2 | 16);
        devices.scan();
        EXPECT_THAT(
            capture.Lines(),
            ElementsAre(CCapturedLine{2, "Ostrel/Src/Ostrel", scan, "ENTER NVMeDevices::scan()"},
                        CCapturedLine{16, "Ostrel/Src/Ostrel", "NAMESPACE_Ostrel::NVMeDevices::addDetected",
                                      "Detected NVMe device. deviceName: /dev/nvme0n1, driver: nvme"},
                        CCapturedLine{2, "Ostrel/Src/Ostrel", scan, "LEAVE NVMeDevices::scan() -> ret 1"}));
    }
    drives.Remove("/dev/nvme0n1");
    const TestSupport::CTraceCapture capture(2 | 16);
    devices.scan();
    EXPECT_THAT(capture.Texts(),
                ElementsAre("ENTER NVMeDevices::scan()", "LEAVE NVMeDevices::scan() -> ret 0"));
}

TEST(NVMeDevice, IsZeroUntilItIsQueried)
{
    const NVMeDevice device("/dev/nvme7n1", "nvme");
    EXPECT_EQ(device.deviceName, "/dev/nvme7n1");
    EXPECT_EQ(device.driver, "nvme");
    EXPECT_EQ(device.identifyController.VID, 0);
    EXPECT_EQ(device.identifyNamespace.NSZE, 0U);
    EXPECT_EQ(device.smartHealthLog.CompositeTemperature(), 0);
}

TEST(NVMeDevice, AnsweredQueriesFillTheBlocks)
{
    CFakeDrives drives;
    drives.Add(CFakeDrive(0).Vendor(0x144D).Kelvin(300).TemperatureLog(78, 0));
    NVMeDevice device("/dev/nvme0n1", "nvme");
    EXPECT_TRUE(device.queryIdentifyController());
    EXPECT_TRUE(device.queryIdentifyNamespace());
    EXPECT_TRUE(device.querySmartHealthLog());
    TLXX::VendorLogPage page{};
    EXPECT_TRUE(device.queryVendorLogPage(0xC5, page));
    EXPECT_EQ(device.identifyController.VID, 0x144D);
    EXPECT_EQ(device.identifyNamespace.NSZE, 2U * 1024 * 1024);
    EXPECT_EQ(device.smartHealthLog.CompositeTemperature(), 300);
    EXPECT_EQ(page[0], 78);
    EXPECT_THAT(drives.Queries(), ElementsAre("controller /dev/nvme0n1", "namespace /dev/nvme0n1",
                                              "health /dev/nvme0n1", "log 0xC5 /dev/nvme0n1"));
}

TEST(NVMeDevice, FailedQueriesLeaveTheBlocksAsTheyWere)
{
    CFakeDrives drives;
    CFakeDrive& drive = drives.Add(CFakeDrive(0).Vendor(0x144D));
    NVMeDevice device("/dev/nvme0n1", "nvme");
    ASSERT_TRUE(device.queryIdentifyController() && device.queryIdentifyNamespace() &&
                device.querySmartHealthLog());
    drive.Vendor(0x1344).Kelvin(310);
    drive.m_Namespace.NSZE = 1;
    drive.m_ControllerStatuses = {5};
    drive.m_NamespaceStatuses = {5};
    drive.m_HealthStatuses = {5};

    EXPECT_FALSE(device.queryIdentifyController());
    EXPECT_FALSE(device.queryIdentifyNamespace());
    EXPECT_FALSE(device.querySmartHealthLog());
    TLXX::VendorLogPage page{};
    page[0] = 42;
    EXPECT_FALSE(device.queryVendorLogPage(0xC5, page));
    EXPECT_EQ(device.identifyController.VID, 0x144D);
    EXPECT_EQ(device.identifyNamespace.NSZE, 2U * 1024 * 1024);
    EXPECT_EQ(device.smartHealthLog.CompositeTemperature(), 298);
    EXPECT_EQ(page[0], 42);
}
