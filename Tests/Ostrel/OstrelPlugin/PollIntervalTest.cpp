#include "Support/GroupingLocale.h"
#include "Support/PluginUnderTest.h"
#include "Support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

namespace {

/** A settings folder that only this test uses. */
class PollInterval : public testing::Test
{
public:
    PollInterval() { PI::CConfigFile::SetFolder(m_Folder.Path().string()); }
    ~PollInterval() override { PI::CConfigFile::SetFolder({}); }

    /** The interval of a plug-in that finds `content` in its settings file. */
    std::uint32_t Read(const std::string& content) const
    {
        m_Folder.Write("Ostrel.ini", content);
        return TestSupport::CPluginUnderTest().m_PollInterval;
    }

    TestSupport::CTemporaryFolder m_Folder;
};

TEST_F(PollInterval, WithoutAFileTheIntervalIsTheDefault)
{
    EXPECT_EQ(TestSupport::CPluginUnderTest().m_PollInterval, 30U);
}

TEST_F(PollInterval, WithoutTheKeyTheIntervalIsTheDefault)
{
    EXPECT_EQ(Read(""), 30U);
    EXPECT_EQ(Read("Other=45\n; PollInterval=45\n"), 30U);
}

TEST_F(PollInterval, AValueThatIsNoNumberLeavesTheDefault)
{
    EXPECT_EQ(Read("PollInterval=\n"), 30U);
    EXPECT_EQ(Read("PollInterval=often\n"), 30U);
    EXPECT_EQ(Read("PollInterval=0x40\n"), 30U);
    EXPECT_EQ(Read("PollInterval=4294967296\n"), 30U);
}

TEST_F(PollInterval, AValueThatIsMoreThanANumberLeavesTheDefault)
{
    EXPECT_EQ(Read("PollInterval=45s\n"), 30U);
    EXPECT_EQ(Read("PollInterval=45 \n"), 30U);
    EXPECT_EQ(Read("PollInterval=45.5\n"), 30U);
}

TEST_F(PollInterval, BlanksBeforeTheNumberDoNotMatter)
{
    EXPECT_EQ(Read("PollInterval= 45\n"), 45U);
    EXPECT_EQ(Read("PollInterval =\t45\n"), 45U);
}

TEST_F(PollInterval, AreReadTheSameWhateverTheProcessesLocale)
{
    const TestSupport::CGroupingLocale locale;
    EXPECT_EQ(Read("PollInterval=1.000\n"), 30U);
    EXPECT_EQ(Read("PollInterval=45\n"), 45U);
}

TEST_F(PollInterval, AValueWithinBoundsIsTaken)
{
    EXPECT_EQ(Read("PollInterval=45\n"), 45U);
    EXPECT_EQ(Read("[General]\r\nPollInterval=45\r\n"), 45U);
    EXPECT_EQ(Read("PollInterval=2\n"), 2U);
    EXPECT_EQ(Read("PollInterval=255\n"), 255U);
}

TEST_F(PollInterval, AValueOutOfBoundsIsClamped)
{
    EXPECT_EQ(Read("PollInterval=0\n"), 2U);
    EXPECT_EQ(Read("PollInterval=1\n"), 2U);
    EXPECT_EQ(Read("PollInterval=256\n"), 255U);
    EXPECT_EQ(Read("PollInterval=300\n"), 255U);
    EXPECT_EQ(Read("PollInterval=4294967295\n"), 255U);
}

} // namespace
