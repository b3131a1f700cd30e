#include "Support/TemporaryFolder.h"

#include <PI/ConfigFile.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <utility>

#include <sys/stat.h>
#include <unistd.h>

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
    // A reader that had it open goes on reading the old content.
    EXPECT_EQ(std::string(std::istreambuf_iterator<char>(reader), {}), "A=1\n");
    EXPECT_EQ(m_Folder.Read("Test.ini"), "A=2\n");
}

TEST_F(ReplaceFileTest, MakesANewFileAsTheUsersMaskHasIt)
{
    using std::filesystem::perms;
    for (const auto& [mask, permissions] :
         {std::pair(mode_t{077}, perms::owner_read | perms::owner_write),
          std::pair(mode_t{002},
                    perms::owner_read | perms::owner_write | perms::group_read | perms::others_read)}) {
        std::filesystem::remove(m_Folder.Path() / "Test.ini");
        const mode_t former = umask(mask);
        EXPECT_EQ(m_Config.WriteKeyValue("A", "1", -1, -1), 0U);
        EXPECT_EQ(m_Config.WriteKeyValue("A", "2", -1, -1), 0U);
        (void)umask(former);
        EXPECT_EQ(std::filesystem::status(m_Folder.Path() / "Test.ini").permissions(), permissions);
    }
}

TEST_F(ReplaceFileTest, KeepsMorePermissionsThanTheMaskWouldLeave)
{
    using std::filesystem::perms;
    const auto path = m_Folder.Write("Test.ini", "A=1\n");
    const auto permissions = perms::owner_all | perms::group_all | perms::others_all;
    std::filesystem::permissions(path, permissions);
    const mode_t former = umask(077);
    EXPECT_EQ(m_Config.WriteKeyValue("A", "2", -1, -1), 0U);
    (void)umask(former);
    EXPECT_EQ(std::filesystem::status(path).permissions(), permissions);
}

TEST_F(ReplaceFileTest, PassesWhatAKilledProcessLeft)
{
    const std::string left = "Test.ini." + std::to_string(getpid()) + "-0";
    m_Folder.Write(left, "torn");
    EXPECT_EQ(m_Config.WriteKeyValue("A", "1", -1, -1), 0U);
    EXPECT_EQ(m_Folder.Read("Test.ini"), "A=1\n");
    EXPECT_EQ(m_Folder.Read(left), "torn");
}

TEST_F(ReplaceFileTest, APipeInTheSettingsPlaceIsNeitherReadNorReplaced)
{
    ASSERT_EQ(mkfifo((m_Folder.Path() / "Test.ini").c_str(), 0600), 0);
    std::string value = "before";
    EXPECT_NE(m_Config.ReadKeyValue("A", value, -1, -1), 0U);
    EXPECT_EQ(value, "before");
    EXPECT_NE(m_Config.WriteKeyValue("A", "1", -1, -1), 0U);
    EXPECT_TRUE(std::filesystem::is_fifo(m_Folder.Path() / "Test.ini"));
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
