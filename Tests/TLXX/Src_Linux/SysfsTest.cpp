#include "SysfsTree.h"

#include <TLXX/ConfigManager.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>
#include <map>
#include <ostream>

#include <sys/stat.h>

namespace TLXX {

bool operator==(const CDeviceEntry& left, const CDeviceEntry& right)
{
    return left.m_DeviceName == right.m_DeviceName && left.m_Driver == right.m_Driver;
}

std::ostream& operator<<(std::ostream& stream, const CDeviceEntry& entry)
{
    return stream << entry.m_DeviceName << " by " << entry.m_Driver;
}

} // namespace TLXX

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using testing::Key;
using TLXX::CDeviceEntry;
using TLXX::CPciLocation;
using TLXX::Linux::CController;
using TLXX::Linux::listControllers;

std::vector<CDeviceEntry> enumerate(const std::string& tree)
{
    const TLXXTest::CSysfsScope scope(TLXXTest::recordedSysfs(tree));
    return TLXX::Linux::enumerateDevices();
}

std::map<std::string, CController> byName(const std::string& tree)
{
    std::map<std::string, CController> controllers;
    for (const CController& controller : listControllers(TLXXTest::recordedSysfs(tree)))
        controllers.insert({controller.m_Name, controller});
    return controllers;
}

TEST(SysfsTest, EnumeratesInTheOrderOfTheInstanceNumbers)
{
    EXPECT_THAT(enumerate("plain"),
                ElementsAre(CDeviceEntry{"/dev/nvme0n1", "nvme"}, CDeviceEntry{"/dev/nvme2n2", "nvme"},
                            CDeviceEntry{"/dev/nvme10n4", "nvme"}));
}

TEST(SysfsTest, ReadsWhatAControllerSaysOfItself)
{
    const auto controllers = byName("plain");
    ASSERT_EQ(controllers.size(), 3U);
    const CController& first = controllers.at("nvme0");
    EXPECT_EQ(first.m_Instance, 0U);
    EXPECT_EQ(first.m_Transport, "pcie");
    EXPECT_EQ(first.m_State, "live");
    EXPECT_EQ(first.m_Driver, "nvme");
    EXPECT_EQ(first.m_Location, (CPciLocation{0, 1, 0, 0}));
    EXPECT_EQ(first.m_DeviceName, "/dev/nvme0n1");
    EXPECT_EQ(first.m_NamespaceId, 1U);
    EXPECT_EQ(controllers.at("nvme2").m_Location, (CPciLocation{0x10000, 0xE1, 0x1F, 7}));
    EXPECT_EQ(controllers.at("nvme10").m_Location, (CPciLocation{0, 0x0A, 0x1C, 3}));
}

TEST(SysfsTest, TheLowestNamespaceIdentifierWins)
{
    const CController controller = byName("plain").at("nvme2");
    EXPECT_EQ(controller.m_DeviceName, "/dev/nvme2n2");
    EXPECT_EQ(controller.m_NamespaceId, 3U);
    EXPECT_EQ(controller.m_Namespaces, 3U);
}

TEST(SysfsTest, TheNodeNumberStandsForAMissingIdentifier)
{
    EXPECT_EQ(byName("plain").at("nvme10").m_NamespaceId, 4U);
}

TEST(SysfsTest, EachPathOfASharedNamespaceHasItsOwnName)
{
    EXPECT_THAT(enumerate("multipath"),
                ElementsAre(CDeviceEntry{"/dev/nvme0n1", "nvme"}, CDeviceEntry{"/dev/nvme0c1n1", "nvme"},
                            CDeviceEntry{"/dev/nvme5n1", "nvme"}));
    EXPECT_EQ(byName("multipath").at("nvme0").m_Namespaces, 2U);
    EXPECT_EQ(byName("multipath").at("nvme2").m_Namespaces, 1U);
}

TEST(SysfsTest, FabricsControllersAreListedButYieldNoDisk)
{
    EXPECT_THAT(enumerate("fabrics"), ElementsAre(CDeviceEntry{"/dev/nvme1n1", "nvme"}));
    const CController controller = byName("fabrics").at("nvme0");
    EXPECT_EQ(controller.m_Transport, "tcp");
    EXPECT_EQ(controller.m_State, "connecting");
    EXPECT_EQ(controller.m_Driver, "nvme_tcp");
    EXPECT_EQ(controller.m_Location, std::nullopt);
    EXPECT_EQ(controller.m_DeviceName, "/dev/nvme0n1");
}

TEST(SysfsTest, ControllersWithoutANamespaceAreListedButYieldNoDisk)
{
    EXPECT_THAT(enumerate("no-namespace"), IsEmpty());
    const CController controller = byName("no-namespace").at("nvme0");
    EXPECT_EQ(controller.m_State, "resetting");
    EXPECT_EQ(controller.m_DeviceName, "");
    EXPECT_EQ(controller.m_NamespaceId, 0U);
    EXPECT_EQ(controller.m_Location, (CPciLocation{0, 5, 0, 0}));
}

TEST(SysfsTest, ADamagedTreeYieldsWhatIsWholeInIt)
{
    EXPECT_THAT(enumerate("damaged"),
                ElementsAre(CDeviceEntry{"/dev/nvme3n2", ""}, CDeviceEntry{"/dev/nvme4294967295n1", ""}));
    const auto controllers = byName("damaged");
    EXPECT_THAT(controllers,
                ElementsAre(Key("nvme0"), Key("nvme2"), Key("nvme3"), Key("nvme4"), Key("nvme4294967295")));

    EXPECT_EQ(controllers.at("nvme0").m_Transport, "");
    EXPECT_EQ(controllers.at("nvme2").m_Transport, "");
    EXPECT_EQ(controllers.at("nvme3").m_Location, std::nullopt);
    EXPECT_EQ(controllers.at("nvme3").m_NamespaceId, 2U);
    EXPECT_EQ(controllers.at("nvme4").m_DeviceName, "");
    EXPECT_EQ(controllers.at("nvme4").m_Location, std::nullopt);
    EXPECT_EQ(controllers.at("nvme4").m_State, "li?[2Jve");
    EXPECT_EQ(controllers.at("nvme4294967295").m_NamespaceId, 1U);
}

TEST(SysfsTest, NoTreeNoControllers)
{
    EXPECT_THAT(listControllers("/nonexistent"), IsEmpty());
    EXPECT_THAT(listControllers(""), IsEmpty());
    const TLXXTest::CTemporarySysfs tree;
    EXPECT_THAT(listControllers(tree.Root()), IsEmpty());
}

TEST(SysfsTest, ClassFolderThatIsAFileHasNoControllers)
{
    const TLXXTest::CTemporarySysfs tree;
    std::filesystem::create_directories(tree.Root() / "class");
    std::ofstream(tree.Root() / "class" / "nvme") << "file";
    EXPECT_THAT(listControllers(tree.Root()), IsEmpty());
}

TEST(SysfsTest, APipeInPlaceOfAnAttributeDoesNotBlock)
{
    const TLXXTest::CTemporarySysfs tree;
    tree.Controller(0, "0000:01:00.0");
    ASSERT_EQ(::mkfifo((tree.Root() / "class/nvme/nvme0/state").c_str(), 0600), 0);
    ASSERT_EQ(listControllers(tree.Root()).size(), 1U);
    EXPECT_EQ(listControllers(tree.Root())[0].m_State, "");
}

TEST(SysfsTest, AnEndlessAttributeIsCut)
{
    const TLXXTest::CTemporarySysfs tree;
    tree.Controller(0, "0000:01:00.0");
    tree.Attribute("nvme0/state", std::string(100'000, 'x'));
    EXPECT_EQ(listControllers(tree.Root()).at(0).m_State, std::string(255, 'x'));
}

struct CAddressCase
{
    std::string m_Text;
    std::optional<CPciLocation> m_Expected;
};

std::ostream& operator<<(std::ostream& stream, const CAddressCase& value)
{
    return stream << '"' << value.m_Text << '"';
}

class PciAddressTest : public testing::TestWithParam<CAddressCase>
{};

TEST_P(PciAddressTest, IsReadExactlyOrNotAtAll)
{
    const TLXXTest::CTemporarySysfs tree;
    tree.Controller(0, GetParam().m_Text);
    const TLXXTest::CSysfsScope scope(tree.Root());
    EXPECT_EQ(listControllers(tree.Root()).at(0).m_Location, GetParam().m_Expected);

    ASSERT_EQ(TLXX::Linux::enumerateDevices().size(), 1U);
    CPciLocation location{-1, -2, -3, -4};
    const bool found = TLXX::CConfigManager::GetLocation({}, 1, location.m_Segment, location.m_Bus,
                                                         location.m_Device, location.m_Function);
    EXPECT_EQ(found, GetParam().m_Expected.has_value());
    EXPECT_EQ(location, GetParam().m_Expected.value_or(CPciLocation{-1, -2, -3, -4}));
}

INSTANTIATE_TEST_SUITE_P(
    Addresses, PciAddressTest,
    testing::Values(CAddressCase{"0000:00:00.0", CPciLocation{0, 0, 0, 0}},
                    CAddressCase{"0001:02:03.4", CPciLocation{1, 2, 3, 4}},
                    CAddressCase{"abcd:EF:1f.7", CPciLocation{0xABCD, 0xEF, 0x1F, 7}},
                    CAddressCase{"7fffffff:ff:1f.7", CPciLocation{0x7FFFFFFF, 0xFF, 0x1F, 7}},
                    CAddressCase{"80000000:00:00.0", std::nullopt},
                    CAddressCase{"0000:100:00.0", std::nullopt}, CAddressCase{"0000:00:20.0", std::nullopt},
                    CAddressCase{"0000:00:00.8", std::nullopt}, CAddressCase{"0000:00:00.0x", std::nullopt},
                    CAddressCase{"0000:00:00", std::nullopt}, CAddressCase{"0000:00:00.", std::nullopt},
                    CAddressCase{"00:00.0", std::nullopt}, CAddressCase{"-001:00:00.0", std::nullopt},
                    CAddressCase{"0x00:00:00.0", std::nullopt},
                    CAddressCase{"100000000:00:00.0", std::nullopt}, CAddressCase{"", std::nullopt}));

TEST(LocationTest, CountsTheEnumeratedControllersFromOne)
{
    const TLXXTest::CSysfsScope scope(TLXXTest::recordedSysfs("fabrics"));
    CPciLocation location{-1, -2, -3, -4};
    const auto lookUp = [&](std::uint32_t number) {
        return TLXX::CConfigManager::GetLocation({"known"}, number, location.m_Segment, location.m_Bus,
                                                 location.m_Device, location.m_Function);
    };
    EXPECT_FALSE(lookUp(1)) << "nothing was enumerated yet";
    (void)TLXX::Linux::enumerateDevices();
    EXPECT_FALSE(lookUp(0));
    EXPECT_FALSE(lookUp(2));
    EXPECT_FALSE(lookUp(0xFFFFFFFF));
    EXPECT_EQ(location, (CPciLocation{-1, -2, -3, -4}));
    EXPECT_TRUE(lookUp(1));
    EXPECT_EQ(location, (CPciLocation{0, 2, 0, 0}));

    TLXX::Linux::setSysfsRoot(TLXXTest::recordedSysfs("plain"));
    EXPECT_FALSE(lookUp(1)) << "another sysfs was not enumerated yet";
}

} // namespace
