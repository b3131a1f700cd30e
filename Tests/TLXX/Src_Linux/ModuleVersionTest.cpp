#include "SysfsTree.h"

#include <TLXX/System.h>

#include <gtest/gtest.h>

#include <sys/utsname.h>

namespace {

class ModuleVersionTest : public testing::Test
{
protected:
    TLXXTest::CSysfsScope m_Sysfs{TLXXTest::recordedSysfs("plain")};
};

std::string kernelRelease()
{
    utsname system{};
    EXPECT_EQ(::uname(&system), 0);
    return system.release;
}

TEST_F(ModuleVersionTest, IsTheModulesOwn)
{
    EXPECT_EQ(TLXX::CSystem::GetModuleVersion("nvme"), "1.0");
}

TEST_F(ModuleVersionTest, IsTheKernelsForAModuleWithoutOne)
{
    EXPECT_NE(kernelRelease(), "");
    EXPECT_EQ(TLXX::CSystem::GetModuleVersion("vmd"), kernelRelease());
}

TEST_F(ModuleVersionTest, IsTheKernelsForADriverThatIsBuiltIn)
{
    EXPECT_EQ(TLXX::CSystem::GetModuleVersion("builtin_nvme"), kernelRelease());
}

TEST_F(ModuleVersionTest, IsEmptyForAnUnknownDriver)
{
    EXPECT_EQ(TLXX::CSystem::GetModuleVersion("unheard_of"), "");
}

TEST_F(ModuleVersionTest, NamesDoNotLeaveTheirFolder)
{
    for (const std::string name : {"", ".", "..", "../module/nvme", "nvme/../nvme", "/sys/module/nvme"})
        EXPECT_EQ(TLXX::CSystem::GetModuleVersion(name), "") << name;
    EXPECT_EQ(TLXX::CSystem::GetModuleVersion(std::string("nvme\0x", 6)), "");
    EXPECT_EQ(TLXX::CSystem::GetModuleVersion(std::string(10'000, 'x')), "");
}

} // namespace
