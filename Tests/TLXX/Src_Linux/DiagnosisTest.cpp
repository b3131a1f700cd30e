#include "ScriptedKernel.h"
#include "SysfsTree.h"

#include <TLXX/Diagnosis.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <map>
#include <string>
#include <vector>

namespace {

TEST(DiagnosisTest, ShowsEveryControllerAndWhetherItOpens)
{
    const TLXXTest::CSysfsScope sysfs(TLXXTest::recordedSysfs("fabrics"));
    TLXXTest::CScriptedKernel kernel;
    kernel.Provide("/dev/nvme0");
    kernel.Refuse("/dev/nvme1", EACCES);

    const auto states = TLXX::controllerStates();
    ASSERT_EQ(states.size(), 2U);
    EXPECT_EQ(states[0].m_Name, "nvme0");
    EXPECT_EQ(states[0].m_DeviceName, "") << "the enumeration yields none for it";
    EXPECT_EQ(states[0].m_Driver, "nvme_tcp");
    EXPECT_EQ(states[0].m_Transport, "tcp");
    EXPECT_EQ(states[0].m_State, "connecting");
    EXPECT_EQ(states[0].m_Location, std::nullopt);
    EXPECT_EQ(states[0].m_AccessStatus, 0U);
    EXPECT_EQ(states[0].m_AccessPath, "/dev/nvme0");

    EXPECT_EQ(states[1].m_Name, "nvme1");
    EXPECT_EQ(states[1].m_DeviceName, "/dev/nvme1n1");
    EXPECT_EQ(states[1].m_Namespaces, 1U);
    EXPECT_EQ(states[1].m_Location, (TLXX::CPciLocation{0, 2, 0, 0}));
    EXPECT_EQ(states[1].m_AccessStatus, static_cast<std::uint32_t>(EACCES));
    EXPECT_EQ(states[1].m_AccessPath, "/dev/nvme1");
}

TEST(DiagnosisTest, ShowsAControllerWithoutNamespaceAndNode)
{
    const TLXXTest::CSysfsScope sysfs(TLXXTest::recordedSysfs("no-namespace"));
    const TLXXTest::CScriptedKernel kernel;
    const auto states = TLXX::controllerStates();
    ASSERT_EQ(states.size(), 1U);
    EXPECT_EQ(states[0].m_DeviceName, "");
    EXPECT_EQ(states[0].m_State, "resetting");
    EXPECT_EQ(states[0].m_AccessStatus, static_cast<std::uint32_t>(ENOENT));
}

TEST(DiagnosisTest, ShowsWhatTheKernelKnowsOfAController)
{
    const TLXXTest::CTemporarySysfs tree;
    tree.Controller(0, "0000:01:00.0");
    tree.Controller(1, "0000:02:00.0");
    tree.Attribute("nvme0/serial", "S-1 \x01        ");
    tree.Attribute("nvme0/model", "A Model   ");
    tree.Attribute("nvme0/firmware_rev", "1.2 ");
    const TLXXTest::CSysfsScope sysfs(tree.Root());
    const TLXXTest::CScriptedKernel kernel;
    const auto states = TLXX::controllerStates();
    ASSERT_EQ(states.size(), 2U);
    EXPECT_EQ(states[0].m_SerialNumber, "S-1 ?");
    EXPECT_EQ(states[0].m_Model, "A Model");
    EXPECT_EQ(states[0].m_FirmwareRevision, "1.2");
    EXPECT_EQ(states[1].m_SerialNumber, "");
    EXPECT_EQ(states[1].m_Model, "");
    EXPECT_EQ(states[1].m_FirmwareRevision, "");
}

/** The link of a controller whose attributes are `value` by name. */
TLXX::CPciLink linkOf(const std::map<std::string, std::string>& values)
{
    const TLXXTest::CTemporarySysfs tree;
    tree.Controller(0, "0000:01:00.0");
    for (const auto& [name, value] : values)
        tree.Attribute("nvme0/device/" + name, value);
    const TLXXTest::CSysfsScope sysfs(tree.Root());
    const TLXXTest::CScriptedKernel kernel;
    return TLXX::controllerStates().at(0).m_Link;
}

TEST(DiagnosisTest, ShowsTheLinkNowAndAtMost)
{
    const TLXX::CPciLink link = linkOf({{"current_link_speed", "2.5 GT/s PCIe"},
                                        {"max_link_speed", "16.0 GT/s PCIe"},
                                        {"current_link_width", "2"},
                                        {"max_link_width", "4"},
                                        {"numa_node", "1"}});
    EXPECT_EQ(link.m_Speed, 2.5F);
    EXPECT_EQ(link.m_HighestSpeed, 16.0F);
    EXPECT_EQ(link.m_Lanes, 2U);
    EXPECT_EQ(link.m_MostLanes, 4U);
    EXPECT_EQ(link.m_NumaNode, 1U);
}

TEST(DiagnosisTest, LeavesOutWhatNoLinkCanBe)
{
    const std::map<std::string, std::vector<std::string>> senseless = {
        {"current_link_speed",
         {"Unknown", "Unknown speed", "", "8", "8.0GT/s", "-8.0 GT/s", "0 GT/s", "nan GT/s"}},
        {"current_link_width", {"0", "33", "63", "255", "-1", "x4", ""}},
        {"numa_node", {"-1", "", "none"}}};
    for (const auto& [name, values] : senseless)
        for (const std::string& value : values) {
            const TLXX::CPciLink link = linkOf({{name, value}});
            EXPECT_FALSE(link.m_Speed || link.m_HighestSpeed || link.m_Lanes || link.m_MostLanes ||
                         link.m_NumaNode)
                << name << " " << value;
        }
    EXPECT_EQ(linkOf({{"numa_node", "0"}}).m_NumaNode, 0U);
    EXPECT_EQ(linkOf({{"current_link_width", "32"}}).m_Lanes, 32U);
    EXPECT_FALSE(linkOf({}).m_Speed);
}

TEST(DiagnosisTest, NothingWithoutControllers)
{
    const TLXXTest::CTemporarySysfs tree;
    const TLXXTest::CSysfsScope sysfs(tree.Root());
    EXPECT_TRUE(TLXX::controllerStates().empty());
}

} // namespace
