#include "ScriptedKernel.h"
#include "SysfsTree.h"

#include <TLXX/Linux/ControllerNode.h>
#include <TLXX/NvmeQuery.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdint>
#include <filesystem>
#include <vector>

#include <sys/stat.h>

namespace {

using Bytes = std::vector<std::uint8_t>;
using TLXX::Linux::CControllerNode;

const std::string NODE = "/dev/nvme4";
constexpr std::uint32_t NUMBER = 4;
constexpr std::uint32_t FROM_DRIVE = 0x10000;

class ControllerNodeTest : public testing::Test
{
protected:
    ControllerNodeTest()
    {
        m_Tree.Controller(NUMBER, "0000:01:00.0");
        m_Kernel.Provide(NODE);
    }

    std::filesystem::path Entry() const { return m_Tree.Root() / "class/nvme/nvme4"; }

    std::uint64_t SysfsNode() const
    {
        struct stat status = {};
        EXPECT_EQ(::lstat(Entry().c_str(), &status), 0);
        return status.st_ino;
    }

    /** Another controller takes the name. The former one is kept elsewhere, so that its number is not used
     * again. */
    void Exchange() const
    {
        std::filesystem::rename(Entry(), m_Tree.Root() / "former");
        m_Tree.Controller(NUMBER, "0000:02:00.0");
    }

    TLXXTest::CTemporarySysfs m_Tree;
    TLXXTest::CSysfsScope m_Sysfs{m_Tree.Root()};
    TLXXTest::CScriptedKernel m_Kernel;
};

TEST_F(ControllerNodeTest, SendsEachCommandToTheOneOpening)
{
    const CControllerNode controller(NUMBER, SysfsNode());
    EXPECT_EQ(controller.Status(), 0U);
    m_Kernel.Expect({NODE, 0x06, 0, 0x01, 4096}, {Bytes(4096, 1), 0, 0});
    m_Kernel.Expect({NODE, 0x06, 7, 0x00, 4096}, {Bytes(4096, 2), 0, 0});
    m_Kernel.Expect({NODE, 0x02, 0xFFFFFFFF, 0x007F0002, 512}, {Bytes(512, 3), 0, 0});
    m_Kernel.Expect({NODE, 0x02, 0xFFFFFFFF, 0x000100C5, 8, 1024}, {Bytes(8, 4), 0, 0});
    m_Kernel.Expect({NODE, 0x02, 0xFFFFFFFF, 0x03FF0001, 4096}, {Bytes(64, 5), 0, 0});

    Bytes block(4096);
    EXPECT_EQ(controller.IdentifyController(block), 0U);
    EXPECT_EQ(block, Bytes(4096, 1));
    block.assign(4096, 0);
    EXPECT_EQ(controller.IdentifyNamespace(7, block), 0U);
    EXPECT_EQ(block, Bytes(4096, 2));
    Bytes health(512);
    EXPECT_EQ(controller.LogPage(0x02, 0, health), 0U);
    EXPECT_EQ(health, Bytes(512, 3));
    Bytes part(8);
    EXPECT_EQ(controller.LogPage(0xC5, 1024, part), 0U);
    EXPECT_EQ(part, Bytes(8, 4));
    block.assign(4096, 0);
    EXPECT_EQ(controller.LogPage(0x01, 0, block), 0U) << "a page may be shorter than the block";
    Bytes expected(4096);
    std::fill_n(expected.begin(), 64, std::uint8_t{5});
    EXPECT_EQ(block, expected);
    EXPECT_EQ(m_Kernel.Openings(), 1);
}

TEST_F(ControllerNodeTest, NamesFailures)
{
    const CControllerNode controller(NUMBER, SysfsNode());
    m_Kernel.Expect({NODE, 0x06, 0, 0x01, 4096}, {{}, -1, EINTR});
    m_Kernel.Expect({NODE, 0x06, 0, 0x01, 4096}, {{}, 0x2002, 0});
    m_Kernel.Expect({NODE, 0x06, 0, 0x01, 4096}, {Bytes(512, 1), 0, 0});
    m_Kernel.Expect({NODE, 0x02, 0xFFFFFFFF, 0x007F0002, 512}, {Bytes(100, 1), 0, 0});
    Bytes block(4096);
    EXPECT_EQ(controller.IdentifyController(block), static_cast<std::uint32_t>(EINTR));
    EXPECT_EQ(controller.IdentifyController(block), FROM_DRIVE | 0x2002U);
    EXPECT_EQ(controller.IdentifyController(block), TLXXTest::SHORT_TRANSFER);
    Bytes health(512);
    EXPECT_EQ(controller.LogPage(0x02, 0, health), TLXXTest::SHORT_TRANSFER);
}

TEST_F(ControllerNodeTest, OpensNoControllerThatIsNotMeant)
{
    const std::uint64_t former = SysfsNode();
    Exchange();
    const CControllerNode exchanged(NUMBER, former);
    EXPECT_EQ(exchanged.Status(), TLXX::STATUS_NO_DEVICE);
    const CControllerNode absent(5, former);
    EXPECT_EQ(absent.Status(), TLXX::STATUS_NO_DEVICE);
    Bytes block(4096);
    EXPECT_EQ(exchanged.IdentifyController(block), TLXX::STATUS_NO_DEVICE);
    EXPECT_EQ(m_Kernel.StillOpen(), 0);
}

TEST_F(ControllerNodeTest, TellsWhyANodeDoesNotOpen)
{
    m_Kernel.Refuse(NODE, EACCES);
    const CControllerNode controller(NUMBER, SysfsNode());
    Bytes block(4096);
    EXPECT_EQ(controller.Status(), static_cast<std::uint32_t>(EACCES));
    EXPECT_EQ(controller.IdentifyController(block), static_cast<std::uint32_t>(EACCES));
}

TEST_F(ControllerNodeTest, StaysWithTheControllerThatItOpened)
{
    const CControllerNode controller(NUMBER, SysfsNode());
    Exchange();
    m_Kernel.Expect({NODE, 0x02, 0xFFFFFFFF, 0x007F0002, 512}, {{}, -1, ENODEV});
    Bytes block(512);
    EXPECT_EQ(controller.LogPage(0x02, 0, block), static_cast<std::uint32_t>(ENODEV));
    EXPECT_EQ(m_Kernel.Openings(), 1);
}

TEST_F(ControllerNodeTest, RefusesABlockThatIsTooLarge)
{
    const CControllerNode controller(NUMBER, SysfsNode());
    Bytes block(4100);
    EXPECT_THROW((void)controller.LogPage(0x01, 0, block), std::length_error);
}

} // namespace
