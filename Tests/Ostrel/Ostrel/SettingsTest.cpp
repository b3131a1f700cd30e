#include "Support/GroupingLocale.h"
#include "Support/PluginUnderTest.h"
#include "Support/TemporaryFolder.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <string>

namespace {

/** A settings folder of the test's own. */
class Settings : public testing::Test
{
public:
    Settings() { PI::CConfigFile::SetFolder(m_Folder.Path().string()); }
    ~Settings() override { PI::CConfigFile::SetFolder({}); }

    /** The interval of a plug-in that finds `content` in its settings file. */
    std::uint32_t PollInterval(const std::string& content) const
    {
        m_Folder.Write("Ostrel.ini", content);
        return TestSupport::CPluginUnderTest().m_PollInterval;
    }

    TestSupport::CTemporaryFolder m_Folder;
};

TEST_F(Settings, WithoutAFileTheIntervalIsTheDefault)
{
    EXPECT_EQ(TestSupport::CPluginUnderTest().m_PollInterval, 30U);
}

TEST_F(Settings, WithoutTheKeyTheIntervalIsTheDefault)
{
    EXPECT_EQ(PollInterval(""), 30U);
    EXPECT_EQ(PollInterval("Other=45\n; PollInterval=45\n"), 30U);
}

TEST_F(Settings, AValueThatIsNoNumberLeavesTheDefault)
{
    EXPECT_EQ(PollInterval("PollInterval=\n"), 30U);
    EXPECT_EQ(PollInterval("PollInterval=often\n"), 30U);
    EXPECT_EQ(PollInterval("PollInterval=0x40\n"), 30U);
    EXPECT_EQ(PollInterval("PollInterval=4294967296\n"), 30U);
}

TEST_F(Settings, AValueThatIsMoreThanANumberLeavesTheDefault)
{
    EXPECT_EQ(PollInterval("PollInterval=45s\n"), 30U);
    EXPECT_EQ(PollInterval("PollInterval=45 \n"), 30U);
    EXPECT_EQ(PollInterval("PollInterval=45.5\n"), 30U);
}

TEST_F(Settings, BlanksBeforeTheNumberDoNotMatter)
{
    EXPECT_EQ(PollInterval("PollInterval= 45\n"), 45U);
    EXPECT_EQ(PollInterval("PollInterval =\t45\n"), 45U);
}

TEST_F(Settings, AreReadTheSameWhateverTheProcessesLocale)
{
    const TestSupport::CGroupingLocale locale;
    EXPECT_EQ(PollInterval("PollInterval=1.000\n"), 30U);
    EXPECT_EQ(PollInterval("PollInterval=45\n"), 45U);
}

TEST_F(Settings, AValueWithinBoundsIsTaken)
{
    EXPECT_EQ(PollInterval("PollInterval=45\n"), 45U);
    EXPECT_EQ(PollInterval("[General]\r\nPollInterval=45\r\n"), 45U);
    EXPECT_EQ(PollInterval("PollInterval=2\n"), 2U);
    EXPECT_EQ(PollInterval("PollInterval=255\n"), 255U);
}

TEST_F(Settings, AValueOutOfBoundsIsClamped)
{
    EXPECT_EQ(PollInterval("PollInterval=0\n"), 2U);
    EXPECT_EQ(PollInterval("PollInterval=1\n"), 2U);
    EXPECT_EQ(PollInterval("PollInterval=256\n"), 255U);
    EXPECT_EQ(PollInterval("PollInterval=300\n"), 255U);
    EXPECT_EQ(PollInterval("PollInterval=4294967295\n"), 255U);
}

} // namespace
