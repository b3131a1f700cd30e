#include "Drives_Linux/PciFunctions.h"

#include "Support/TemporaryFolder.h"

namespace {

TEST(PciFunctions, FindsNvmeFunctionsThatTheDriverDoesNotServe)
{
    const TestSupport::CTemporaryFolder sysfs;
    const auto add = [&](const std::string& address, const std::string& pciClass, const std::string& driver) {
        const std::string device = "bus/pci/devices/" + address;
        std::filesystem::create_directories(sysfs.Path() / device);
        sysfs.Write(device + "/class", pciClass + "\n");
        if (!driver.empty())
            std::filesystem::create_symlink("../../drivers/" + driver, sysfs.Path() / device / "driver");
    };
    add("0000:05:00.0", "0x010802", "vfio-pci");
    add("0000:01:00.0", "0x010802", "nvme");
    add("0000:03:00.0", "0x010802", "");
    add("0000:00:1f.2", "0x010601", "");
    std::filesystem::create_directories(sysfs.Path() / "bus/pci/devices/0000:07:00.0");
    sysfs.Write("bus/pci/devices/0000:07:00.0/vendor", "0x8086\n");

    const auto functions = Host::Platform::unservedFunctionsBelow(sysfs.Path());
    ASSERT_EQ(functions.size(), 2U);
    EXPECT_EQ(functions[0].m_Address, "0000:03:00.0");
    EXPECT_EQ(functions[0].m_Driver, "");
    EXPECT_EQ(functions[1].m_Address, "0000:05:00.0");
    EXPECT_EQ(functions[1].m_Driver, "vfio-pci");
}

TEST(PciFunctions, FindsNoneWithoutPciDevices)
{
    const TestSupport::CTemporaryFolder sysfs;
    EXPECT_TRUE(Host::Platform::unservedFunctionsBelow(sysfs.Path()).empty());
}

} // namespace
