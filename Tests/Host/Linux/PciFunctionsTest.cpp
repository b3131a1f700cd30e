#include "PciFunctions.h"

#include "Host/TemporaryFolder.h"

namespace {

TEST(PciFunctions, FindsNvmeFunctionsThatTheDriverDoesNotServe)
{
    const HostTest::TemporaryFolder sysfs;
    const auto add = [&](const std::string& address, const std::string& pciClass, const std::string& driver) {
        const std::string device = "bus/pci/devices/" + address;
        sysfs.write(device + "/class", pciClass + "\n");
        if (!driver.empty())
            std::filesystem::create_symlink("../../drivers/" + driver, sysfs.path() / device / "driver");
    };
    add("0000:05:00.0", "0x010802", "vfio-pci");
    add("0000:01:00.0", "0x010802", "nvme");
    add("0000:03:00.0", "0x010802", "");
    add("0000:00:1f.2", "0x010601", "");
    sysfs.write("bus/pci/devices/0000:07:00.0/vendor", "0x8086\n");

    const auto functions = Host::Platform::unservedFunctionsBelow(sysfs.path());
    ASSERT_EQ(functions.size(), 2U);
    EXPECT_EQ(functions[0].m_Address, "0000:03:00.0");
    EXPECT_EQ(functions[0].m_Driver, "");
    EXPECT_EQ(functions[1].m_Address, "0000:05:00.0");
    EXPECT_EQ(functions[1].m_Driver, "vfio-pci");
}

TEST(PciFunctions, FindsNoneWithoutPciDevices)
{
    const HostTest::TemporaryFolder sysfs;
    EXPECT_TRUE(Host::Platform::unservedFunctionsBelow(sysfs.path()).empty());
}

} // namespace
