#include "ScriptedKernel.h"
#include "SysfsTree.h"

#include <TLXX/ConfigManager.h>
#include <TLXX/NvmeQuery.h>
#include <TLXX/System.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cerrno>
#include <functional>

#include <dlfcn.h>
#include <linux/magic.h>
#include <sys/vfs.h>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;

bool g_EverythingIsSysfs = false;
/** Called whenever the names below a folder are read. */
std::function<void()> g_AtLook;

std::vector<std::string> enumerated()
{
    std::vector<std::string> names;
    for (const TLXX::CDeviceEntry& entry : TLXX::Linux::enumerateDevices())
        names.push_back(entry.m_DeviceName);
    return names;
}

std::int32_t busOfTheFirst()
{
    TLXX::CPciLocation location;
    EXPECT_TRUE(TLXX::CConfigManager::GetLocation({}, 1, location.m_Segment, location.m_Bus,
                                                  location.m_Device, location.m_Function));
    return location.m_Bus;
}

/** A tree that is accepted as the kernel's own. The location shows whether the tree was read again. */
class EnumerationTest : public testing::Test
{
protected:
    EnumerationTest()
    {
        g_EverythingIsSysfs = true;
        Controller(0, "0000:01:00.0");
    }
    ~EnumerationTest() override
    {
        g_EverythingIsSysfs = false;
        g_AtLook = nullptr;
    }

    void Controller(std::uint32_t instance, const std::string& address)
    {
        const std::string name = "nvme" + std::to_string(instance);
        m_Tree.Controller(instance, address);
        std::filesystem::create_directories(m_Tree.Root() / "class/nvme" / name / "device");
        std::filesystem::create_symlink("../../nvme", m_Tree.Root() / "class/nvme" / name / "device/driver");
        std::filesystem::create_directories(m_Tree.Root() / "class/block" / (name + "n1"));
    }

    void MoveTheFirst() const { m_Tree.Attribute("nvme0/address", "0000:02:00.0"); }
    void MoveTheFirstBack() const { m_Tree.Attribute("nvme0/address", "0000:01:00.0"); }

    /** Another controller with the same names, as after a quick exchange. */
    void ExchangeTheFirst(const std::string& address)
    {
        const auto classes = m_Tree.Root() / "class";
        Controller(7, address);
        std::filesystem::rename(classes / "nvme/nvme7/nvme7n1", classes / "nvme/nvme7/nvme0n1");
        m_Tree.Remove(0);
        std::filesystem::rename(classes / "nvme/nvme7", classes / "nvme/nvme0");
        std::filesystem::remove(classes / "block/nvme7n1");
    }

    static void FailToIdentifyTheFirst()
    {
        TLXX::NVME_IDENTIFY_CONTROLLER controller{};
        EXPECT_EQ(TLXX::NVMeStorageQueryPropertyIdentifyController("/dev/nvme0n1", controller),
                  static_cast<std::uint32_t>(ENOENT));
    }

    TLXXTest::CTemporarySysfs m_Tree;
    TLXXTest::CSysfsScope m_Scope{m_Tree.Root()};
};

TEST_F(EnumerationTest, ReadsNothingAnewWhileAllNamesAreTheSame)
{
    EXPECT_THAT(enumerated(), ElementsAre("/dev/nvme0n1"));
    MoveTheFirst();
    EXPECT_THAT(enumerated(), ElementsAre("/dev/nvme0n1"));
    EXPECT_EQ(busOfTheFirst(), 1);
}

TEST_F(EnumerationTest, ReadsEverythingAnewWhereNodesHaveNoNumbersOfTheirOwn)
{
    g_EverythingIsSysfs = false;
    (void)enumerated();
    MoveTheFirst();
    (void)enumerated();
    EXPECT_EQ(busOfTheFirst(), 2);
}

TEST_F(EnumerationTest, SeesAControllerThatComesAndGoes)
{
    (void)enumerated();
    Controller(1, "0000:03:00.0");
    EXPECT_THAT(enumerated(), ElementsAre("/dev/nvme0n1", "/dev/nvme1n1"));
    m_Tree.Remove(1);
    EXPECT_THAT(enumerated(), ElementsAre("/dev/nvme0n1"));
}

TEST_F(EnumerationTest, SeesADiskThatComesLaterThanItsController)
{
    m_Tree.Attribute("nvme1/transport", "pcie");
    m_Tree.Attribute("nvme1/address", "0000:03:00.0");
    std::filesystem::create_directories(m_Tree.Root() / "class/nvme/nvme1/device");
    std::filesystem::create_symlink("../../nvme", m_Tree.Root() / "class/nvme/nvme1/device/driver");
    EXPECT_THAT(enumerated(), ElementsAre("/dev/nvme0n1"));
    m_Tree.Attribute("nvme1/nvme1n1/nsid", "1");
    std::filesystem::create_directories(m_Tree.Root() / "class/block/nvme1n1");
    EXPECT_THAT(enumerated(), ElementsAre("/dev/nvme0n1", "/dev/nvme1n1"));
}

TEST_F(EnumerationTest, SeesAnotherControllerUnderTheNameOfTheFormer)
{
    (void)enumerated();
    ExchangeTheFirst("0000:02:00.0");
    EXPECT_THAT(enumerated(), ElementsAre("/dev/nvme0n1"));
    EXPECT_EQ(busOfTheFirst(), 2);
}

TEST_F(EnumerationTest, ShowsNoPageOfTheFormerControllerUnderItsName)
{
    TLXXTest::CScriptedKernel kernel;
    const TLXXTest::CExpectedCommand ask{"/dev/nvme0", 0x02, 0xFFFFFFFF, 0x007F0002, 512};
    const auto warning = [&](const TLXXTest::CReply& reply) {
        kernel.Expect(ask, reply);
        TLXX::NVME_SMART_HEALTH_INFORMATION_LOG log{};
        (void)TLXX::NVMeStorageQueryPropertyGetLogPageSMARTHealthInfo("/dev/nvme0n1", log);
        return log.Warning;
    };
    const TLXXTest::CReply good{std::vector<std::uint8_t>(512, 4), 0, 0};
    const TLXXTest::CReply failed{{}, -1, EIO};
    (void)enumerated();
    EXPECT_EQ(warning(good), 4);
    EXPECT_EQ(warning(failed), 4);
    (void)enumerated();
    EXPECT_EQ(warning(failed), 4) << "still the same controller";
    ExchangeTheFirst("0000:01:00.0");
    (void)enumerated();
    EXPECT_EQ(warning(failed), 0);
}

TEST_F(EnumerationTest, ForgetsThePagesOfAControllerThatWasAway)
{
    TLXXTest::CScriptedKernel kernel;
    const TLXXTest::CExpectedCommand ask{"/dev/nvme0", 0x06, 1, 0x00, 4096};
    TLXX::NVME_IDENTIFY_NAMESPACE block{};
    kernel.Expect(ask, {std::vector<std::uint8_t>(4096, 4), 0, 0});
    (void)enumerated();
    EXPECT_EQ(TLXX::NVMeStorageQueryPropertyIdentifyNamespace("/dev/nvme0n1", block), 0U);
    std::filesystem::rename(m_Tree.Root() / "class/nvme/nvme0", m_Tree.Root() / "away");
    EXPECT_THAT(enumerated(), IsEmpty());
    std::filesystem::rename(m_Tree.Root() / "away", m_Tree.Root() / "class/nvme/nvme0");
    EXPECT_THAT(enumerated(), ElementsAre("/dev/nvme0n1"));
    kernel.Expect(ask, {{}, -1, EIO});
    block = {};
    EXPECT_EQ(TLXX::NVMeStorageQueryPropertyIdentifyNamespace("/dev/nvme0n1", block),
              static_cast<std::uint32_t>(EIO));
    EXPECT_EQ(block.NSZE, 0U);
}

TEST_F(EnumerationTest, DoesNotRelyOnNamesThatChangedDuringTheWalk)
{
    // Names are read from two folders, before the walk and after it.
    int looks = 0;
    g_AtLook = [&] {
        if (++looks == 2)
            Controller(1, "0000:03:00.0");
    };
    EXPECT_THAT(enumerated(), ElementsAre("/dev/nvme0n1", "/dev/nvme1n1"));
    // Now the names equal those that were read first.
    m_Tree.Remove(1);
    EXPECT_THAT(enumerated(), ElementsAre("/dev/nvme0n1"));
}

TEST_F(EnumerationTest, LooksAnewAfterANamespaceDidNotIdentifyItself)
{
    const TLXXTest::CScriptedKernel kernel;
    (void)enumerated();
    MoveTheFirst();
    TLXX::NVME_IDENTIFY_NAMESPACE block{};
    EXPECT_EQ(TLXX::NVMeStorageQueryPropertyIdentifyNamespace("/dev/nvme0n1", block),
              static_cast<std::uint32_t>(ENOENT));
    (void)enumerated();
    EXPECT_EQ(busOfTheFirst(), 2);
}

TEST_F(EnumerationTest, DoesNotRelyOnAControllerThatIsHalfThere)
{
    std::filesystem::remove(m_Tree.Root() / "class/nvme/nvme0/transport");
    EXPECT_THAT(enumerated(), IsEmpty());
    m_Tree.Attribute("nvme0/transport", "pcie");
    EXPECT_THAT(enumerated(), ElementsAre("/dev/nvme0n1"));
}

TEST_F(EnumerationTest, DoesNotRelyOnAControllerThatHasNoDriverYet)
{
    const std::filesystem::path link = m_Tree.Root() / "class/nvme/nvme0/device/driver";
    std::filesystem::remove(link);
    EXPECT_EQ(TLXX::Linux::enumerateDevices().at(0).m_Driver, "");
    std::filesystem::create_symlink("../../nvme", link);
    EXPECT_EQ(TLXX::Linux::enumerateDevices().at(0).m_Driver, "nvme");
}

TEST_F(EnumerationTest, DoesNotRelyOnAControllerWithoutALocation)
{
    m_Tree.Attribute("nvme0/address", "");
    EXPECT_THAT(enumerated(), ElementsAre("/dev/nvme0n1"));
    MoveTheFirst();
    (void)enumerated();
    EXPECT_EQ(busOfTheFirst(), 2);
}

TEST_F(EnumerationTest, DoesNotRelyOnANamespaceWithoutItsIdentifier)
{
    std::filesystem::remove(m_Tree.Root() / "class/nvme/nvme0/nvme0n1/nsid");
    (void)enumerated();
    MoveTheFirst();
    (void)enumerated();
    EXPECT_EQ(busOfTheFirst(), 2);
}

TEST_F(EnumerationTest, DoesNotRelyOnADiskThatTheKernelIsTakingAway)
{
    std::filesystem::remove(m_Tree.Root() / "class/block/nvme0n1");
    EXPECT_THAT(enumerated(), ElementsAre("/dev/nvme0n1"));
    std::filesystem::remove_all(m_Tree.Root() / "class/nvme/nvme0/nvme0n1");
    EXPECT_THAT(enumerated(), IsEmpty());
}

TEST_F(EnumerationTest, LooksAnewAfterADiskDidNotIdentifyItself)
{
    const TLXXTest::CScriptedKernel kernel;
    (void)enumerated();
    MoveTheFirst();
    FailToIdentifyTheFirst();
    (void)enumerated();
    EXPECT_EQ(busOfTheFirst(), 2);
}

TEST_F(EnumerationTest, ReadsADriversVersionAnewWhenAControllerHasComeOrGone)
{
    const auto version = [this](const std::string& text) {
        m_Tree.Attribute("../../module/nvme/version", text);
        (void)enumerated();
        return TLXX::CSystem::GetModuleVersion("nvme");
    };
    EXPECT_EQ(version("1.0"), "1.0");
    EXPECT_EQ(version("1.1"), "1.0");
    Controller(1, "0000:03:00.0");
    EXPECT_EQ(version("1.2"), "1.2");
    m_Tree.Remove(1);
    EXPECT_EQ(version("1.3"), "1.3");
    g_EverythingIsSysfs = false;
    EXPECT_EQ(version("1.4"), "1.4");
    EXPECT_EQ(version("1.5"), "1.5");
}

TEST_F(EnumerationTest, LooksAnewAfterADiskDidNotIdentifyItselfDuringAWalk)
{
    const TLXXTest::CScriptedKernel kernel;
    // Names are read from two folders, before the walk and after it.
    int looks = 0;
    g_AtLook = [&] {
        if (++looks == 4)
            FailToIdentifyTheFirst();
    };
    (void)enumerated();
    ASSERT_EQ(looks, 4);
    MoveTheFirst();
    (void)enumerated();
    EXPECT_EQ(busOfTheFirst(), 2);
    MoveTheFirstBack();
    (void)enumerated();
    EXPECT_EQ(busOfTheFirst(), 2) << "once is enough";
}

TEST_F(EnumerationTest, ForgetsTheNamesOfAnotherTree)
{
    (void)enumerated();
    const TLXXTest::CTemporarySysfs other;
    const TLXXTest::CSysfsScope scope(other.Root());
    EXPECT_THAT(enumerated(), IsEmpty());
}

} // namespace

extern "C" __attribute__((visibility("default"))) int fstatfs(int descriptor, struct statfs* status) noexcept
{
    using Function = int (*)(int, struct statfs*);
    static const auto real = reinterpret_cast<Function>(::dlsym(RTLD_NEXT, "fstatfs"));
    if (g_AtLook)
        g_AtLook();
    const int result = real(descriptor, status);
    if (result == 0 && g_EverythingIsSysfs)
        status->f_type = SYSFS_MAGIC;
    return result;
}
