#include "ScriptedKernel.h"
#include "SysfsTree.h"

#include <TLXX/NvmeQuery.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <thread>

namespace {

using TLXX::CQuerySession;
using TLXXTest::CReply;

const std::string FIRST = "/dev/nvme0n1";
const std::string SECOND = "/dev/nvme2n2";

std::uint32_t identify(const std::string& path)
{
    TLXX::NVME_IDENTIFY_CONTROLLER controller{};
    return TLXX::NVMeStorageQueryPropertyIdentifyController(path, controller);
}

class QuerySessionTest : public testing::Test
{
protected:
    void Expect(const std::string& node, int times, int error = 0)
    {
        for (int i = 0; i < times; ++i)
            m_Kernel.Expect({node, 0x06, 0, 1, 4096}, error == 0
                                                          ? CReply{std::vector<std::uint8_t>(4096, 1), 0, 0}
                                                          : CReply{{}, -1, error});
    }

    TLXXTest::CSysfsScope m_Sysfs{TLXXTest::recordedSysfs("plain")};
    TLXXTest::CScriptedKernel m_Kernel;
};

TEST_F(QuerySessionTest, WithoutOneEveryQueryOpensTheDisk)
{
    Expect("/dev/nvme0", 3);
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(identify(FIRST), 0U);
    EXPECT_EQ(m_Kernel.Openings(), 3);
}

TEST_F(QuerySessionTest, WithOneItIsOpenedOnceAndClosedAtTheEnd)
{
    Expect("/dev/nvme0", 4);
    {
        const CQuerySession session(FIRST);
        EXPECT_EQ(m_Kernel.Openings(), 0) << "nothing was asked yet";
        for (int i = 0; i < 3; ++i)
            EXPECT_EQ(identify(FIRST), 0U);
        EXPECT_EQ(m_Kernel.Openings(), 1);
    }
    EXPECT_EQ(m_Kernel.StillOpen(), 0);
    EXPECT_EQ(identify(FIRST), 0U);
    EXPECT_EQ(m_Kernel.Openings(), 2);
}

TEST_F(QuerySessionTest, HasNoPartInQueriesOfAnotherDisk)
{
    Expect("/dev/nvme0", 1);
    Expect("/dev/nvme2", 1);
    Expect("/dev/nvme0", 1);
    const CQuerySession session(FIRST);
    EXPECT_EQ(identify(FIRST), 0U);
    EXPECT_EQ(identify(SECOND), 0U);
    EXPECT_EQ(identify(FIRST), 0U);
    EXPECT_EQ(m_Kernel.Openings(), 2);
    EXPECT_EQ(m_Kernel.StillOpen(), 1);
}

TEST_F(QuerySessionTest, HasNoPartInQueriesOfAnotherThread)
{
    Expect("/dev/nvme0", 2);
    const CQuerySession session(FIRST);
    EXPECT_EQ(identify(FIRST), 0U);
    std::thread([] { EXPECT_EQ(identify(FIRST), 0U); }).join();
    EXPECT_EQ(m_Kernel.Openings(), 2);
}

TEST_F(QuerySessionTest, TheInnermostCountsUntilItsEnd)
{
    Expect("/dev/nvme0", 1);
    Expect("/dev/nvme2", 2);
    Expect("/dev/nvme0", 1);
    const CQuerySession outer(FIRST);
    EXPECT_EQ(identify(FIRST), 0U);
    {
        const CQuerySession inner(SECOND);
        EXPECT_EQ(identify(SECOND), 0U);
        EXPECT_EQ(identify(SECOND), 0U);
    }
    EXPECT_EQ(identify(FIRST), 0U);
    EXPECT_EQ(m_Kernel.Openings(), 2);
}

TEST_F(QuerySessionTest, TriesAgainToOpenADiskThatDidNotOpen)
{
    const CQuerySession session(FIRST);
    m_Kernel.Refuse("/dev/nvme0", EAGAIN);
    EXPECT_EQ(identify(FIRST), static_cast<std::uint32_t>(EAGAIN));
    Expect("/dev/nvme0", 1);
    EXPECT_EQ(identify(FIRST), 0U);
}

TEST_F(QuerySessionTest, KeepsADiskOpenThatFailsToAnswer)
{
    Expect("/dev/nvme0", 1, EIO);
    Expect("/dev/nvme0", 1);
    const CQuerySession session(FIRST);
    EXPECT_EQ(identify(FIRST), static_cast<std::uint32_t>(EIO));
    EXPECT_EQ(identify(FIRST), 0U);
    EXPECT_EQ(m_Kernel.Openings(), 1);
}

} // namespace
