#include "Support/TemporaryFolder.h"

#include <PI/ConfigFile.h>
#include <PI/ErrorCode.h>

#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <string_view>
#include <vector>

namespace {

constexpr std::uint32_t FAILURE = PI::ERR_GENERAL_FAILURE;

struct ConfigFileTest : testing::Test
{
    /** The value of "PollInterval" in a file of this content, or "<failed>" when reading gives 20000. */
    std::string Read(std::string_view content)
    {
        m_Folder.Write("Test.ini", content);
        return ReadKey("Test.ini", "PollInterval");
    }

    std::string ReadKey(const std::string& file, const std::string& key)
    {
        PI::CConfigFile::SetFolder(m_Folder.Path().string());
        PI::CConfigFile config;
        config.SetFileName(file);
        std::string value = "untouched";
        const auto result = config.ReadKeyValue(key, value, -1, -1);
        if (result == 0) {
            return value;
        }
        EXPECT_EQ(result, FAILURE);
        EXPECT_EQ(value, "untouched");
        return "<failed>";
    }

    TestSupport::CTemporaryFolder m_Folder;
};

TEST_F(ConfigFileTest, ReadsAValue)
{
    EXPECT_EQ(Read("PollInterval=45\n"), "45");
    EXPECT_EQ(Read("Other=1\nPollInterval=45\nMore=2\n"), "45");
    EXPECT_EQ(Read("PollInterval=45"), "45");
}

TEST_F(ConfigFileTest, FoldersMayHaveAnyName)
{
    const std::filesystem::path folder = m_Folder.Path() / u8"\u0391\u03B8\u03AE\u03BD\u03B1 \u6771\u4EAC";
    std::filesystem::create_directory(folder);
    std::ofstream(folder / "Test.ini") << "PollInterval=45\n";
    PI::CConfigFile::SetFolder(folder.native());
    PI::CConfigFile config;
    config.SetFileName("Test.ini");
    std::string value;
    EXPECT_EQ(config.ReadKeyValue("PollInterval", value, -1, -1), 0U);
    EXPECT_EQ(value, "45");
}

TEST_F(ConfigFileTest, KeepsBlanksOfTheValue)
{
    EXPECT_EQ(Read("PollInterval=45 \n"), "45 ");
    EXPECT_EQ(Read("PollInterval=45\t \n"), "45\t ");
    EXPECT_EQ(Read("PollInterval= 45\n"), " 45");
    EXPECT_EQ(Read("PollInterval=a=b\n"), "a=b");
    EXPECT_EQ(Read("PollInterval=45;60\n"), "45;60");
}

TEST_F(ConfigFileTest, DropsOneCarriageReturn)
{
    EXPECT_EQ(Read("PollInterval=45\r\n"), "45");
    EXPECT_EQ(Read("PollInterval=45 \r\n"), "45 ");
    EXPECT_EQ(Read("PollInterval=45\r\r\n"), "45\r");
    EXPECT_EQ(Read("PollInterval=45\r"), "45");
    EXPECT_EQ(Read("PollInterval=\r\n"), "");
}

TEST_F(ConfigFileTest, DropsBlanksAroundTheKey)
{
    EXPECT_EQ(Read(" \tPollInterval \t=45\n"), "45");
    EXPECT_EQ(Read("Poll Interval=45\n"), "<failed>");
}

TEST_F(ConfigFileTest, PassesOverCommentsAndHeadings)
{
    EXPECT_EQ(Read(";PollInterval=1\n#PollInterval=2\n[PollInterval=3]\n\nnothing\nPollInterval=45\n"), "45");
    EXPECT_EQ(Read(";PollInterval=1\n"), "<failed>");
    m_Folder.Write("Marks.ini", " ;a=1\n#b=2\n[c=3]\n=4\n");
    EXPECT_EQ(ReadKey("Marks.ini", ";a"), "<failed>");
    EXPECT_EQ(ReadKey("Marks.ini", "#b"), "<failed>");
    EXPECT_EQ(ReadKey("Marks.ini", "[c"), "<failed>");
    EXPECT_EQ(ReadKey("Marks.ini", ""), "<failed>");
}

TEST_F(ConfigFileTest, TheFirstLineOfAKeyCounts)
{
    EXPECT_EQ(Read("[a]\nPollInterval=45\n[b]\nPollInterval=60\n"), "45");
}

TEST_F(ConfigFileTest, KeysMustMatchWhole)
{
    EXPECT_EQ(Read("PollIntervals=45\nPoll=4\npollinterval=5\n"), "<failed>");
}

TEST_F(ConfigFileTest, AnEmptyValueIsAValue)
{
    EXPECT_EQ(Read("PollInterval=\n"), "");
    EXPECT_EQ(Read("PollInterval="), "");
}

TEST_F(ConfigFileTest, ALineWithoutEqualsSignHasNoValue)
{
    EXPECT_EQ(Read("PollInterval\n"), "<failed>");
    EXPECT_EQ(Read("PollInterval 45\n"), "<failed>");
}

TEST_F(ConfigFileTest, ToleratesAByteOrderMark)
{
    EXPECT_EQ(Read("\xEF\xBB\xBFPollInterval=45\n"), "45");
    EXPECT_EQ(Read("\xEF\xBB\xBF;PollInterval=45\n"), "<failed>");
}

TEST_F(ConfigFileTest, AnEmptyFileHasNoKeys)
{
    EXPECT_EQ(Read(""), "<failed>");
    EXPECT_EQ(Read("\xEF\xBB\xBF"), "<failed>");
}

TEST_F(ConfigFileTest, ATornFileFails)
{
    EXPECT_EQ(Read(std::string_view("PollInterval=45\n\0\0\0\0", 20)), "<failed>");
    EXPECT_EQ(Read("PollInter"), "<failed>");
}

TEST_F(ConfigFileTest, AMissingOrUnreadableFileFails)
{
    EXPECT_EQ(ReadKey("Missing.ini", "PollInterval"), "<failed>");
    std::filesystem::create_directory(m_Folder.Path() / "Folder.ini");
    EXPECT_EQ(ReadKey("Folder.ini", "PollInterval"), "<failed>");
    EXPECT_EQ(ReadKey("", "PollInterval"), "<failed>");
}

TEST_F(ConfigFileTest, AnAbsoluteNameStandsForItself)
{
    const TestSupport::CTemporaryFolder other;
    const auto file = other.Write("Other.ini", "PollInterval=50\n");
    EXPECT_EQ(ReadKey(file.string(), "PollInterval"), "50");
}

TEST_F(ConfigFileTest, ThereIsNoSectionButTheWholeFile)
{
    m_Folder.Write("Test.ini", "PollInterval=45\n");
    PI::CConfigFile::SetFolder(m_Folder.Path().string());
    PI::CConfigFile config;
    config.SetFileName("Test.ini");
    std::string value = "untouched";
    EXPECT_EQ(config.ReadKeyValue("PollInterval", value, 0, -1), FAILURE);
    EXPECT_EQ(config.ReadKeyValue("PollInterval", value, -1, 0), FAILURE);
    EXPECT_EQ(value, "untouched");
    EXPECT_EQ(config.ReadKeyValue("PollInterval", value, -1, -1), 0U);
    EXPECT_EQ(value, "45");
}

TEST_F(ConfigFileTest, ReadsBigFilesAndLongLines)
{
    std::string content(100000, 'x');
    content += "\n";
    for (int line = 0; line < 10000; ++line) {
        content += "Key" + std::to_string(line) + "=value\n";
    }
    content += "PollInterval=45\n";
    EXPECT_EQ(Read(content), "45");
}

/** Writes to a file and looks at what it then holds. */
struct ConfigFileWriteTest : testing::Test
{
    ConfigFileWriteTest()
    {
        PI::CConfigFile::SetFolder(m_Folder.Path().string());
        m_Config.SetFileName("Test.ini");
    }

    std::string Content() const { return m_Folder.Read("Test.ini"); }

    /** The content of a file after "60" was written to "PollInterval". */
    std::string After(std::string_view content)
    {
        m_Folder.Write("Test.ini", content);
        EXPECT_EQ(m_Config.WriteKeyValue("PollInterval", "60", -1, -1), 0U);
        std::string value;
        EXPECT_EQ(m_Config.ReadKeyValue("PollInterval", value, -1, -1), 0U);
        EXPECT_EQ(value, "60");
        return Content();
    }

    std::vector<std::string> Names() const
    {
        std::vector<std::string> names;
        for (const auto& entry : std::filesystem::directory_iterator(m_Folder.Path()))
            names.push_back(entry.path().filename().string());
        return names;
    }

    TestSupport::CTemporaryFolder m_Folder;
    PI::CConfigFile m_Config;
};

TEST_F(ConfigFileWriteTest, MakesAFileThatIsMissing)
{
    EXPECT_EQ(m_Config.WriteKeyValue("PollInterval", "60", -1, -1), 0U);
    EXPECT_EQ(Content(), "PollInterval=60\n");
}

TEST_F(ConfigFileWriteTest, ReplacesTheValueAlone)
{
    EXPECT_EQ(After("PollInterval=45\n"), "PollInterval=60\n");
    EXPECT_EQ(After("; a comment\nOther=1\n[Section]\nPollInterval=45\n\nMore = 2 \n# PollInterval=7\n"),
              "; a comment\nOther=1\n[Section]\nPollInterval=60\n\nMore = 2 \n# PollInterval=7\n");
    EXPECT_EQ(After("PollInterval=\nX=1\n"), "PollInterval=60\nX=1\n");
    EXPECT_EQ(After("PollInterval=45\nPollInterval=46\n"), "PollInterval=60\nPollInterval=46\n");
}

TEST_F(ConfigFileWriteTest, AddsAKeyThatIsMissingAtTheEnd)
{
    EXPECT_EQ(After(""), "PollInterval=60\n");
    EXPECT_EQ(After("Other=1\n#PollInterval=9\n"), "Other=1\n#PollInterval=9\nPollInterval=60\n");
    EXPECT_EQ(After("Other=1"), "Other=1\nPollInterval=60\n");
}

TEST_F(ConfigFileWriteTest, KeepsLineEndsAndTheByteOrderMark)
{
    EXPECT_EQ(After("A=1\r\nPollInterval=45\r\nB=2\r\n"), "A=1\r\nPollInterval=60\r\nB=2\r\n");
    EXPECT_EQ(After("\xEF\xBB\xBFPollInterval=45\nB=2\n"), "\xEF\xBB\xBFPollInterval=60\nB=2\n");
}

TEST_F(ConfigFileWriteTest, RefusesWhatItCouldNotReadBack)
{
    m_Folder.Write("Test.ini", "A=1\n");
    EXPECT_EQ(m_Config.WriteKeyValue("", "1", -1, -1), FAILURE);
    EXPECT_EQ(m_Config.WriteKeyValue("A=B", "1", -1, -1), FAILURE);
    EXPECT_EQ(m_Config.WriteKeyValue(" A", "1", -1, -1), FAILURE);
    EXPECT_EQ(m_Config.WriteKeyValue(";A", "1", -1, -1), FAILURE);
    EXPECT_EQ(m_Config.WriteKeyValue("A", "1\nB=2", -1, -1), FAILURE);
    EXPECT_EQ(m_Config.WriteKeyValue("A", "1\r", -1, -1), FAILURE);
    EXPECT_EQ(m_Config.WriteKeyValue("A", std::string("1\0", 2), -1, -1), FAILURE);
    EXPECT_EQ(m_Config.WriteKeyValue("A", "1", 0, -1), FAILURE);
    EXPECT_EQ(m_Config.WriteKeyValue("A", "1", -1, 0), FAILURE);
    EXPECT_EQ(Content(), "A=1\n");
}

TEST_F(ConfigFileWriteTest, LeavesNothingElseInTheFolder)
{
    m_Folder.Write("Test.ini", "A=1\n");
    EXPECT_EQ(m_Config.WriteKeyValue("A", "2", -1, -1), 0U);
    EXPECT_EQ(Names(), std::vector<std::string>{"Test.ini"});
}

TEST_F(ConfigFileWriteTest, FailsWhereItCannotReadOrWrite)
{
    const std::string torn("A=1\n\0\0\0", 7);
    m_Folder.Write("Test.ini", torn);
    EXPECT_EQ(m_Config.WriteKeyValue("A", "2", -1, -1), FAILURE);
    EXPECT_EQ(Content(), torn);

    std::filesystem::create_directory(m_Folder.Path() / "Folder");
    m_Config.SetFileName("Folder");
    EXPECT_EQ(m_Config.WriteKeyValue("A", "2", -1, -1), FAILURE);
    m_Config.SetFileName("missing/Test.ini");
    EXPECT_EQ(m_Config.WriteKeyValue("A", "2", -1, -1), FAILURE);
    EXPECT_EQ(Names().size(), 2U);
}

} // namespace
