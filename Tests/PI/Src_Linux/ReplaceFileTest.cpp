#include "Support/TemporaryFolder.h"

#include <PI/ConfigFile.h>

#include <filesystem>
#include <fstream>
#include <iterator>

namespace {

struct ReplaceFileTest : testing::Test
{
    ReplaceFileTest()
    {
        PI::CConfigFile::SetFolder(m_Folder.Path().string());
        m_Config.SetFileName("Test.ini");
    }

    TestSupport::CTemporaryFolder m_Folder;
    PI::CConfigFile m_Config;
};

TEST_F(ReplaceFileTest, ReplacesTheFileAndKeepsItsPermissions)
{
    using std::filesystem::perms;
    const auto path = m_Folder.Write("Test.ini", "A=1\n");
    const auto permissions = perms::owner_read | perms::owner_write | perms::group_read;
    std::filesystem::permissions(path, permissions);
    std::ifstream reader(path, std::ios::binary);
    EXPECT_EQ(m_Config.WriteKeyValue("A", "2", -1, -1), 0U);
    EXPECT_EQ(std::filesystem::status(path).permissions(), permissions);
    // Who had it open goes on reading the old content.
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(reader), {}), "A=1\n");
    EXPECT_EQ(m_Folder.Read("Test.ini"), "A=2\n");
}

TEST_F(ReplaceFileTest, FollowsALink)
{
    const auto target = m_Folder.Write("Real.ini", "A=1\n");
    std::filesystem::create_symlink(target, m_Folder.Path() / "Test.ini");
    EXPECT_EQ(m_Config.WriteKeyValue("A", "2", -1, -1), 0U);
    EXPECT_TRUE(std::filesystem::is_symlink(m_Folder.Path() / "Test.ini"));
    EXPECT_EQ(m_Folder.Read("Test.ini"), "A=2\n");
}

} // namespace
