#include "ScriptedKernel.h"
#include "SysfsTree.h"

#include <TLXX/Diagnosis.h>

#include <gtest/gtest.h>

#include <cerrno>

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

TEST(DiagnosisTest, NothingWithoutControllers)
{
    const TLXXTest::CTemporarySysfs tree;
    const TLXXTest::CSysfsScope sysfs(tree.Root());
    EXPECT_TRUE(TLXX::controllerStates().empty());
}

} // namespace
