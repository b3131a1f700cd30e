#include "ScriptedKernel.h"
#include "SysfsTree.h"

#include <TLX/Thread.h>
#include <TLXX/NvmeQuery.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <cstring>
#include <functional>
#include <ostream>

namespace {

using TLXXTest::CExpectedCommand;
using TLXXTest::CReply;
using TLXXTest::SHORT_TRANSFER;

constexpr std::uint32_t NEVER_FILLED = 0x20002;

/** Bytes that differ from one position to the next, and do not end like any filler. */
std::vector<std::uint8_t> pattern(std::size_t size)
{
    std::vector<std::uint8_t> bytes(size);
    for (std::size_t i = 0; i < size; ++i)
        bytes[i] = static_cast<std::uint8_t>(i * 7 + i / 256 + 1);
    return bytes;
}

/** A block that the caller filled before, which shows what a query leaves in it. */
template<typename Block>
struct CPrepared
{
    CPrepared() { std::memset(&m_Block, 0xEE, sizeof m_Block); }

    std::vector<std::uint8_t> Bytes() const
    {
        std::vector<std::uint8_t> bytes(sizeof m_Block);
        std::memcpy(bytes.data(), &m_Block, sizeof m_Block);
        return bytes;
    }

    Block m_Block;
};

/** One of the four queries: the command that it must send, and a call of it that fills a block. */
struct CQuery
{
    const char* m_Name;
    TLXX::EQuery m_Kind;
    std::uint8_t m_Opcode;
    std::uint32_t m_NamespaceId;
    std::uint32_t m_Word10;
    std::uint32_t m_Length;
    std::function<std::uint32_t(const std::string&, std::vector<std::uint8_t>&)> m_Run;
    bool m_MayBeShort = false;

    CExpectedCommand On(const std::string& node) const
    {
        return {node, m_Opcode, m_NamespaceId, m_Word10, m_Length};
    }
};

std::ostream& operator<<(std::ostream& stream, const CQuery& query)
{
    return stream << query.m_Name;
}

template<typename Block, typename Function>
auto run(Function query)
{
    return [query](const std::string& path, std::vector<std::uint8_t>& bytes) {
        CPrepared<Block> prepared;
        const std::uint32_t status = query(path, prepared.m_Block);
        bytes = prepared.Bytes();
        return status;
    };
}

auto runVendorLog(std::uint8_t identifier)
{
    return run<TLXX::VendorLogPage>([identifier](const std::string& path, TLXX::VendorLogPage& page) {
        return TLXX::NVMeStorageQueryPropertyGetVendorSpecificLogPage(path, identifier, page);
    });
}

class PassThroughTest : public testing::TestWithParam<CQuery>
{
protected:
    TLXXTest::CSysfsScope m_Sysfs{TLXXTest::recordedSysfs("plain")};
    TLXXTest::CScriptedKernel m_Kernel;
    std::vector<std::uint8_t> m_Bytes;
    const std::string m_Path = "/dev/nvme2n2";
    const std::vector<std::uint8_t> m_Untouched = std::vector<std::uint8_t>(GetParam().m_Length, 0xEE);
};

TEST_P(PassThroughTest, SendsTheCommandToTheControllerAndHandsBackTheBlock)
{
    const auto data = pattern(GetParam().m_Length);
    m_Kernel.Expect(GetParam().On("/dev/nvme2"), {data, 0, 0});
    EXPECT_EQ(GetParam().m_Run(m_Path, m_Bytes), 0U);
    EXPECT_EQ(m_Bytes, data);
    EXPECT_EQ(TLXX::lastStatus(m_Path, GetParam().m_Kind), 0U);
}

TEST_P(PassThroughTest, CanBeBrokenOffOnAThreadThatMayBeEndedByForce)
{
    const auto data = pattern(GetParam().m_Length);
    m_Kernel.Expect(GetParam().On("/dev/nvme2"), {data, 0, 0});
    m_Kernel.Expect(GetParam().On("/dev/nvme2"), {data, 0, 0});
    TLX::Threading::CThread thread([&] { EXPECT_EQ(GetParam().m_Run(m_Path, m_Bytes), 0U); });
    EXPECT_EQ(thread.Wait(), TLX::Threading::WaitResult::Taken);
    EXPECT_TRUE(m_Kernel.WasInterruptible());
    EXPECT_EQ(m_Bytes, data);

    EXPECT_EQ(GetParam().m_Run(m_Path, m_Bytes), 0U);
    EXPECT_FALSE(m_Kernel.WasInterruptible()) << "other threads decide for themselves";
}

TEST_P(PassThroughTest, KeepsTheBlockWhenTheDriveRefuses)
{
    m_Kernel.Expect(GetParam().On("/dev/nvme2"), {pattern(GetParam().m_Length), 0x4109, 0});
    EXPECT_EQ(GetParam().m_Run(m_Path, m_Bytes), 0x14109U);
    EXPECT_EQ(m_Bytes, m_Untouched);
    EXPECT_EQ(TLXX::lastStatus(m_Path, GetParam().m_Kind), 0x14109U);
}

TEST_P(PassThroughTest, KeepsTheBlockWhenTheKernelRefuses)
{
    for (const int error : {EACCES, EPERM, EINTR, EIO, ENODEV, EINVAL}) {
        m_Kernel.Expect(GetParam().On("/dev/nvme2"), {pattern(GetParam().m_Length), -1, error});
        EXPECT_EQ(GetParam().m_Run(m_Path, m_Bytes), static_cast<std::uint32_t>(error));
        EXPECT_EQ(m_Bytes, m_Untouched);
        EXPECT_EQ(TLXX::lastStatus(m_Path, GetParam().m_Kind), static_cast<std::uint32_t>(error));
    }
}

TEST_P(PassThroughTest, SendsNothingToANodeThatDoesNotOpen)
{
    for (const int error : {EACCES, ENOENT, ENXIO, EAGAIN}) {
        m_Kernel.Refuse("/dev/nvme2", error);
        EXPECT_EQ(GetParam().m_Run(m_Path, m_Bytes), static_cast<std::uint32_t>(error));
        EXPECT_EQ(m_Bytes, m_Untouched);
    }
    EXPECT_TRUE(TLXX::isPermissionStatus(EACCES));
}

TEST_P(PassThroughTest, StandardBlocksMustComeWhole)
{
    const std::size_t sizes[] = {0, 1, GetParam().m_Length / 2U, GetParam().m_Length - 8U};
    for (const std::size_t size : sizes) {
        const auto data = pattern(size);
        m_Kernel.Expect(GetParam().On("/dev/nvme2"), {data, 0, 0});
        const std::uint32_t status = GetParam().m_Run(m_Path, m_Bytes);
        if (GetParam().m_MayBeShort) {
            auto padded = data;
            padded.resize(GetParam().m_Length);
            EXPECT_EQ(status, 0U);
            EXPECT_EQ(m_Bytes, padded);
        } else {
            EXPECT_EQ(status, SHORT_TRANSFER) << size;
            EXPECT_EQ(m_Bytes, m_Untouched);
        }
    }
}

TEST_P(PassThroughTest, ABlockOfZerosIsAWholeBlockUnlessItIsAHealthLog)
{
    const std::vector<std::uint8_t> zeros(GetParam().m_Length);
    const bool empty = GetParam().m_Kind == TLXX::EQuery::SmartHealthLog;
    m_Kernel.Expect(GetParam().On("/dev/nvme2"), {zeros, 0, 0});
    EXPECT_EQ(GetParam().m_Run(m_Path, m_Bytes), empty ? NEVER_FILLED : 0U);
    EXPECT_EQ(m_Bytes, empty ? m_Untouched : zeros);
}

TEST_P(PassThroughTest, APathThatIsNoDiskIsNoDevice)
{
    m_Kernel.Provide("/dev/nvme2");
    for (const std::string path :
         {"", "/dev/nvme2", "/dev/nvme2n1", "/dev/nvme99n1", "nvme2n2", "/dev/sda"}) {
        EXPECT_EQ(GetParam().m_Run(path, m_Bytes), static_cast<std::uint32_t>(ENODEV)) << path;
        EXPECT_EQ(m_Bytes, m_Untouched);
    }
}

INSTANTIATE_TEST_SUITE_P(
    Queries, PassThroughTest,
    testing::Values(
        CQuery{"IdentifyController", TLXX::EQuery::IdentifyController, 0x06, 0, 0x01, 4096,
               run<TLXX::NVME_IDENTIFY_CONTROLLER>(TLXX::NVMeStorageQueryPropertyIdentifyController)},
        CQuery{"IdentifyNamespace", TLXX::EQuery::IdentifyNamespace, 0x06, 3, 0x00, 4096,
               run<TLXX::NVME_IDENTIFY_NAMESPACE>(TLXX::NVMeStorageQueryPropertyIdentifyNamespace)},
        CQuery{"HealthLog", TLXX::EQuery::SmartHealthLog, 0x02, 0xFFFFFFFF, 0x007F0002, 512,
               run<TLXX::NVME_SMART_HEALTH_INFORMATION_LOG>(
                   TLXX::NVMeStorageQueryPropertyGetLogPageSMARTHealthInfo)},
        CQuery{"Log0xC5", TLXX::EQuery::VendorLog, 0x02, 0xFFFFFFFF, 0x007F00C5, 512, runVendorLog(0xC5),
               true},
        CQuery{"Log0xCA", TLXX::EQuery::VendorLog, 0x02, 0xFFFFFFFF, 0x007F00CA, 512, runVendorLog(0xCA),
               true},
        CQuery{"Log0xDD", TLXX::EQuery::VendorLog, 0x02, 0xFFFFFFFF, 0x007F00DD, 512, runVendorLog(0xDD),
               true}),
    [](const auto& query) { return std::string(query.param.m_Name); });

const CExpectedCommand IDENTIFY_ON_0{"/dev/nvme0", 0x06, 0, 0x01, 4096};

std::uint32_t identifyOn(const std::string& path)
{
    TLXX::NVME_IDENTIFY_CONTROLLER controller{};
    return TLXX::NVMeStorageQueryPropertyIdentifyController(path, controller);
}

TEST(PassThroughPathTest, SharedNamespacesAreAskedThroughTheirOwnController)
{
    const TLXXTest::CSysfsScope sysfs(TLXXTest::recordedSysfs("multipath"));
    TLXXTest::CScriptedKernel kernel;
    kernel.Expect(IDENTIFY_ON_0, {pattern(4096), 0, 0});
    kernel.Expect({"/dev/nvme1", 0x06, 0, 0x01, 4096}, {pattern(4096), 0, 0});
    kernel.Expect({"/dev/nvme2", 0x06, 0, 0x01, 4096}, {pattern(4096), 0, 0});
    for (const TLXX::CDeviceEntry& entry : TLXX::Linux::enumerateDevices())
        EXPECT_EQ(identifyOn(entry.m_DeviceName), 0U) << entry.m_DeviceName;
}

TEST(PassThroughPathTest, QueriesAfterAnEnumerationDoNotReadSysfsAgain)
{
    const TLXXTest::CTemporarySysfs tree;
    tree.Controller(0, "0000:01:00.0");
    const TLXXTest::CSysfsScope sysfs(tree.Root());
    TLXXTest::CScriptedKernel kernel;
    ASSERT_EQ(TLXX::Linux::enumerateDevices().size(), 1U);

    tree.Empty(0);
    kernel.Expect(IDENTIFY_ON_0, {{}, -1, ENODEV});
    EXPECT_EQ(identifyOn("/dev/nvme0n1"), static_cast<std::uint32_t>(ENODEV));
}

TEST(PassThroughPathTest, AnUnknownPathIsLookedUpOnce)
{
    const TLXXTest::CTemporarySysfs tree;
    tree.Controller(0, "0000:01:00.0");
    const TLXXTest::CSysfsScope sysfs(tree.Root());
    TLXXTest::CScriptedKernel kernel;
    kernel.Expect(IDENTIFY_ON_0, {pattern(4096), 0, 0});
    EXPECT_EQ(identifyOn("/dev/nvme0n1"), 0U);

    tree.Empty(0);
    kernel.Expect(IDENTIFY_ON_0, {pattern(4096), 0, 0});
    EXPECT_EQ(identifyOn("/dev/nvme0n1"), 0U);
}

TEST(PassThroughPathTest, AnotherControllerOfTheSameNameIsNotAsked)
{
    const TLXXTest::CTemporarySysfs tree;
    tree.Controller(0, "0000:01:00.0");
    const TLXXTest::CSysfsScope sysfs(tree.Root());
    TLXXTest::CScriptedKernel kernel;
    ASSERT_EQ(TLXX::Linux::enumerateDevices().size(), 1U);

    tree.Rename("nvme0", "former");
    tree.Controller(0, "0000:01:00.0");
    kernel.Provide("/dev/nvme0");
    EXPECT_EQ(identifyOn("/dev/nvme0n1"), TLXX::STATUS_NO_DEVICE);
    EXPECT_EQ(kernel.StillOpen(), 0);

    ASSERT_EQ(TLXX::Linux::enumerateDevices().size(), 1U);
    kernel.Expect(IDENTIFY_ON_0, {pattern(4096), 0, 0});
    EXPECT_EQ(identifyOn("/dev/nvme0n1"), 0U);
}

TEST(PassThroughPathTest, AnEnumerationForgetsDisksThatAreGone)
{
    const TLXXTest::CTemporarySysfs tree;
    tree.Controller(0, "0000:01:00.0");
    const TLXXTest::CSysfsScope sysfs(tree.Root());
    TLXXTest::CScriptedKernel kernel;
    kernel.Provide("/dev/nvme0");
    ASSERT_EQ(TLXX::Linux::enumerateDevices().size(), 1U);

    tree.Remove(0);
    EXPECT_TRUE(TLXX::Linux::enumerateDevices().empty());
    EXPECT_EQ(identifyOn("/dev/nvme0n1"), static_cast<std::uint32_t>(ENODEV));
}

TEST(PassThroughPathTest, AnotherSysfsForgetsTheFormerDisks)
{
    const TLXXTest::CSysfsScope sysfs(TLXXTest::recordedSysfs("plain"));
    TLXXTest::CScriptedKernel kernel;
    kernel.Provide("/dev/nvme10");
    ASSERT_EQ(TLXX::Linux::enumerateDevices().size(), 3U);
    TLXX::Linux::setSysfsRoot(TLXXTest::recordedSysfs("no-namespace"));
    EXPECT_EQ(identifyOn("/dev/nvme10n4"), static_cast<std::uint32_t>(ENODEV));
}

} // namespace
