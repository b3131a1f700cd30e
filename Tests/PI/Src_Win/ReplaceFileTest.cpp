#include "Support/TemporaryFolder.h"

#include <PI/ConfigFile.h>
#include <PI/ErrorCode.h>
#include <TLX/Win/UniqueHandle.h>

#include <filesystem>
#include <iterator>

#include <windows.h>

namespace {

/** Replaces a file that another program has open. */
struct ReplaceFileTest : testing::Test
{
    ReplaceFileTest()
    {
        PI::CConfigFile::SetFolder(m_Folder.Path().native());
        m_Config.SetFileName("Test.ini");
    }

    std::uint32_t WriteWhileOpenWith(DWORD sharing)
    {
        const auto path = m_Folder.Write("Test.ini", "A=1\n");
        const TLX::Win::CFileHandle reader(
            CreateFileW(path.c_str(), GENERIC_READ, sharing, nullptr, OPEN_EXISTING, 0, nullptr));
        EXPECT_TRUE(reader.Valid());
        return m_Config.WriteKeyValue("A", "2", -1, -1);
    }

    std::ptrdiff_t Files() const
    {
        return std::distance(std::filesystem::directory_iterator(m_Folder.Path()), {});
    }

    TestSupport::CTemporaryFolder m_Folder;
    PI::CConfigFile m_Config;
};

TEST_F(ReplaceFileTest, LeavesAFileThatNobodyMayReplace)
{
    EXPECT_EQ(WriteWhileOpenWith(FILE_SHARE_READ | FILE_SHARE_WRITE), PI::ERR_GENERAL_FAILURE);
    EXPECT_EQ(m_Folder.Read("Test.ini"), "A=1\n");
    EXPECT_EQ(Files(), 1);
}

TEST_F(ReplaceFileTest, ReplacesOneWithAForeignName)
{
    const std::filesystem::path folder = m_Folder.Path() / std::filesystem::path(u8"ρυθμίσεις 設定");
    std::filesystem::create_directory(folder);
    PI::CConfigFile::SetFolder(folder.native());
    EXPECT_EQ(m_Config.WriteKeyValue("A", "1", -1, -1), 0U);
    EXPECT_EQ(m_Config.WriteKeyValue("A", "2", -1, -1), 0U);
    std::string value;
    EXPECT_EQ(m_Config.ReadKeyValue("A", value, -1, -1), 0U);
    EXPECT_EQ(value, "2");
    EXPECT_TRUE(std::filesystem::exists(folder / "Test.ini"));
}

} // namespace
