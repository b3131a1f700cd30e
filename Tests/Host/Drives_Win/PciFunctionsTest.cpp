#include "Base/Platform.h"
#include "Support_Win/ScriptedDevices.h"

#include <gtest/gtest.h>

#include <windows.h>
#include <cfgmgr32.h>

namespace {

using TestSupport::CScriptedDevices;

constexpr CScriptedDevices::Node ROOT = CScriptedDevices::ROOT;

/** Compatible identifiers as the PCI bus driver reports them. */
std::vector<char> identifiersOf(const std::string& pciClass)
{
    std::vector<char> list;
    for (const std::string& each : {std::string("PCI\\VEN_8086&CC_010802"), pciClass, std::string()}) {
        list.insert(list.end(), each.begin(), each.end());
        list.push_back('\0');
    }
    return list;
}

TEST(PciFunctions, AreUnservedWithoutTheNvmeDriverOfTheSystem)
{
    CScriptedDevices devices(L"TLXX.dll");
    const auto served = devices.Add(ROOT, "StorNVMe");
    const auto foreign = devices.Add(ROOT, "iaStorVD");
    const auto bare = devices.Add(ROOT);
    const auto sata = devices.Add(ROOT, "storahci");
    for (const auto node : {served, foreign, bare})
        devices.SetProperty(node, CM_DRP_COMPATIBLEIDS, identifiersOf("PCI\\CC_010802"));
    devices.SetProperty(sata, CM_DRP_COMPATIBLEIDS, identifiersOf("PCI\\CC_010601"));
    devices.SetNumber(foreign, CM_DRP_BUSNUMBER, 0x1'3B);
    devices.SetNumber(foreign, CM_DRP_ADDRESS, 0x1F'0003);

    const auto functions = Host::Platform::unservedFunctions();
    ASSERT_EQ(functions.size(), 2U);
    EXPECT_EQ(functions[0].m_Address, "0001:3b:1f.3");
    EXPECT_EQ(functions[0].m_Driver, "iaStorVD");
    EXPECT_EQ(functions[1].m_Driver, "");
}

} // namespace
