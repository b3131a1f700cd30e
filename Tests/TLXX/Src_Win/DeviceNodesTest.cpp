#include "Support_Win/ScriptedDevices.h"

#include <TLXX/Diagnosis.h>
#include <TLXX/Win/DeviceNodes.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <windows.h>
#include <cfgmgr32.h>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using TestSupport::CScriptedDevices;
using TestSupport::CScriptedDisk;

class DeviceNodes : public testing::Test
{
protected:
    static constexpr CScriptedDevices::Node ROOT = CScriptedDevices::ROOT;

    CScriptedDisk Disk(std::uint32_t number) const
    {
        CScriptedDisk disk;
        disk.m_Path = R"(\\?\disk#)" + std::to_string(number);
        disk.m_Number = number;
        return disk;
    }

    void Place(CScriptedDevices::Node node, std::uint32_t bus, std::uint32_t address)
    {
        m_Devices.SetNumber(node, CM_DRP_BUSNUMBER, bus);
        m_Devices.SetNumber(node, CM_DRP_ADDRESS, address);
    }

    CScriptedDevices m_Devices{L"TLXX.dll"};
};

TEST_F(DeviceNodes, ComeParentsBeforeChildren)
{
    const auto first = m_Devices.Add(ROOT);
    const auto second = m_Devices.Add(ROOT);
    const auto below = m_Devices.Add(first);
    EXPECT_THAT(TLXX::Win::deviceNodes(), ElementsAre(ROOT, first, below, second));
    m_Devices.m_HasRoot = false;
    EXPECT_THAT(TLXX::Win::deviceNodes(), IsEmpty());
}

TEST_F(DeviceNodes, GiveTheTextsOfAProperty)
{
    const auto node = m_Devices.Add(ROOT, "stornvme");
    EXPECT_EQ(TLXX::Win::nodeService(node), "stornvme");
    EXPECT_EQ(TLXX::Win::nodeService(ROOT), "");
    EXPECT_EQ(TLXX::Win::nodeService(99), "");
    m_Devices.SetProperty(node, CM_DRP_COMPATIBLEIDS, {'a', 'b', '\0', 'c', '\0', '\0', 'x'});
    EXPECT_THAT(TLXX::Win::nodeTexts(node, CM_DRP_COMPATIBLEIDS), ElementsAre("ab", "c"));
    m_Devices.SetProperty(node, CM_DRP_COMPATIBLEIDS, {'a', 'b'});
    EXPECT_THAT(TLXX::Win::nodeTexts(node, CM_DRP_COMPATIBLEIDS), ElementsAre("ab"));
    m_Devices.SetProperty(node, CM_DRP_COMPATIBLEIDS, {});
    EXPECT_THAT(TLXX::Win::nodeTexts(node, CM_DRP_COMPATIBLEIDS), IsEmpty());
    m_Devices.SetProperty(node, CM_DRP_COMPATIBLEIDS, std::vector<char>(5000, 'a'));
    EXPECT_THAT(TLXX::Win::nodeTexts(node, CM_DRP_COMPATIBLEIDS), IsEmpty());
}

TEST_F(DeviceNodes, TellTheirPlaceOnThePciBuses)
{
    const auto node = m_Devices.Add(ROOT);
    EXPECT_EQ(TLXX::Win::nodeLocation(node), std::nullopt);
    Place(node, 0x3B, 0x1F0007);
    EXPECT_EQ(TLXX::Win::nodeLocation(node), (TLXX::CPciLocation{0, 0x3B, 0x1F, 7}));
    Place(node, 0x0001'FF, 0);
    EXPECT_EQ(TLXX::Win::nodeLocation(node), (TLXX::CPciLocation{1, 0xFF, 0, 0}));
    Place(node, 0xFFFF'FF, 0x10000);
    EXPECT_EQ(TLXX::Win::nodeLocation(node), (TLXX::CPciLocation{0xFFFF, 0xFF, 1, 0}));
}

TEST_F(DeviceNodes, ThatAreNotOnPciHaveNoPlace)
{
    const auto node = m_Devices.Add(ROOT);
    for (const auto& [bus, address] :
         {std::pair(0U, 0xFFFFFFFFU), {0xFFFFFFFFU, 0U}, {0x1000000U, 0U}, {0U, 0x200000U}, {0U, 8U}}) {
        Place(node, bus, address);
        EXPECT_EQ(TLXX::Win::nodeLocation(node), std::nullopt) << bus << ' ' << address;
    }
    Place(node, 0, 0);
    m_Devices.SetProperty(node, CM_DRP_ADDRESS, {0, 0, 0});
    EXPECT_EQ(TLXX::Win::nodeLocation(node), std::nullopt);
    m_Devices.SetProperty(node, CM_DRP_ADDRESS, {0, 0, 0, 0, 0, 0, 0, 0});
    EXPECT_EQ(TLXX::Win::nodeLocation(node), std::nullopt);
}

TEST_F(DeviceNodes, DiagnosisShowsControllersWithTheirDisks)
{
    const auto bridge = m_Devices.Add(ROOT, "pci");
    const auto readable = m_Devices.AddController(bridge, {Disk(4)}, "StorNVMe");
    Place(readable, 2, 0x30000);
    CScriptedDisk closed = Disk(5);
    closed.m_OpenError = ERROR_ACCESS_DENIED;
    m_Devices.AddController(bridge, {closed});
    m_Devices.Add(bridge, "stornvme");
    m_Devices.AddController(bridge, {Disk(6)}, "iaStorVD");

    const auto states = TLXX::controllerStates();
    ASSERT_EQ(states.size(), 3U);
    EXPECT_EQ(states[0].m_Name, CScriptedDevices::Instance(readable));
    EXPECT_EQ(states[0].m_Driver, "StorNVMe");
    EXPECT_EQ(states[0].m_DeviceName, R"(\\.\PhysicalDrive4)");
    EXPECT_EQ(states[0].m_Transport, "pcie");
    EXPECT_EQ(states[0].m_Location, (TLXX::CPciLocation{0, 2, 3, 0}));
    EXPECT_EQ(states[0].m_AccessStatus, 0U);
    EXPECT_EQ(states[0].m_AccessPath, R"(\\.\PhysicalDrive4)");
    EXPECT_EQ(states[1].m_DeviceName, R"(\\.\PhysicalDrive5)");
    EXPECT_EQ(states[1].m_AccessStatus, static_cast<std::uint32_t>(ERROR_ACCESS_DENIED));
    EXPECT_EQ(states[1].m_Location, std::nullopt);
    EXPECT_EQ(states[2].m_DeviceName, "");
    EXPECT_EQ(m_Devices.OpenHandles(), 0U);
}

TEST_F(DeviceNodes, DiagnosisSurvivesEveryFailure)
{
    m_Devices.AddController(ROOT, {Disk(1)});
    m_Devices.AddController(ROOT, {Disk(2)});
    ASSERT_EQ(TLXX::controllerStates().size(), 2U);
    const long calls = m_Devices.m_CallCount;
    for (long call = 0; call < calls; ++call) {
        m_Devices.m_CallCount = 0;
        m_Devices.m_FailAt = call;
        EXPECT_LE(TLXX::controllerStates().size(), 2U) << call;
        EXPECT_EQ(m_Devices.OpenHandles(), 0U) << call;
    }
}

} // namespace
