#include "Support/TemporaryFolder.h"

#include <TLX/TraceSink.h>

#include <gtest/gtest.h>

#include <string>
#include <system_error>

namespace {

using namespace TLX::Trace;
namespace fs = std::filesystem;

class RotatingFileSink : public testing::Test
{
protected:
    static CLine Line(std::string_view text)
    {
        return {.m_Time = 0,
                .m_ModuleNumber = 1,
                .m_ModuleName = "M",
                .m_Level = 2,
                .m_SourceUnit = "U",
                .m_Function = "f",
                .m_SourceLine = 3,
                .m_Text = text};
    }

    static std::string Stored(std::string_view text) { return formatLine(Line(text)) + "\n"; }

    TestSupport::CTemporaryFolder m_Folder;
    fs::path m_File = m_Folder.Path() / "trace.log";
    std::uint64_t m_LineSize = Stored("a").size();
};

TEST_F(RotatingFileSink, WritesLinesThatCanBeReadAtOnce)
{
    const auto sink = rotatingFileSink(m_File);
    sink->Write(Line("a"));
    sink->Write(Line("b\n"));
    EXPECT_EQ(m_Folder.Read("trace.log"), Stored("a") + Stored("b\\n"));
}

TEST_F(RotatingFileSink, FillsAFileToTheLastByteAndThenRotates)
{
    const auto sink = rotatingFileSink(m_File, 2 * m_LineSize, 2);
    for (const char* text : {"1", "2", "3", "4"})
        sink->Write(Line(text));
    EXPECT_EQ(m_Folder.Read("trace.log"), Stored("3") + Stored("4"));
    EXPECT_EQ(m_Folder.Read("trace.log.1"), Stored("1") + Stored("2"));
    for (const char* text : {"5", "6", "7"})
        sink->Write(Line(text));
    EXPECT_EQ(m_Folder.Read("trace.log"), Stored("7"));
    EXPECT_EQ(m_Folder.Read("trace.log.1"), Stored("5") + Stored("6"));
    EXPECT_EQ(m_Folder.Read("trace.log.2"), Stored("3") + Stored("4"));
    EXPECT_FALSE(fs::exists(m_File.string() + ".3"));
}

TEST_F(RotatingFileSink, RotatesWhenTheNextLineIsOneByteTooLong)
{
    const auto sink = rotatingFileSink(m_File, 2 * m_LineSize - 1);
    sink->Write(Line("1"));
    sink->Write(Line("2"));
    EXPECT_EQ(m_Folder.Read("trace.log"), Stored("2"));
    EXPECT_EQ(m_Folder.Read("trace.log.1"), Stored("1"));
}

TEST_F(RotatingFileSink, GoesOnInAFileThatIsThere)
{
    m_Folder.Write("trace.log", Stored("0"));
    const auto sink = rotatingFileSink(m_File, 2 * m_LineSize);
    sink->Write(Line("1"));
    EXPECT_EQ(m_Folder.Read("trace.log"), Stored("0") + Stored("1"));
    sink->Write(Line("2"));
    EXPECT_EQ(m_Folder.Read("trace.log"), Stored("2"));
}

TEST_F(RotatingFileSink, KeepsThreeOldFilesOfEightMebibytesUnlessToldOtherwise)
{
    // Two of these fit into a file.
    const std::string text(3U << 20U, 'x');
    const auto sink = rotatingFileSink(m_File);
    for (const char* number : {"1", "2", "3", "4", "5", "6", "7", "8", "9"})
        sink->Write(Line(number + text));
    EXPECT_EQ(m_Folder.Read("trace.log"), Stored("9" + text));
    EXPECT_EQ(m_Folder.Read("trace.log.1"), Stored("7" + text) + Stored("8" + text));
    EXPECT_EQ(m_Folder.Read("trace.log.3"), Stored("3" + text) + Stored("4" + text));
    EXPECT_FALSE(fs::exists(m_File.string() + ".4"));
}

TEST_F(RotatingFileSink, KeepsNoOldFileWhenToldSo)
{
    const auto sink = rotatingFileSink(m_File, m_LineSize, 0);
    sink->Write(Line("1"));
    sink->Write(Line("2"));
    EXPECT_EQ(m_Folder.Read("trace.log"), Stored("2"));
    EXPECT_FALSE(fs::exists(m_File.string() + ".1"));
}

TEST_F(RotatingFileSink, GivesALineThatIsTooLongAFileOfItsOwn)
{
    const auto sink = rotatingFileSink(m_File, m_LineSize);
    const std::string text(500, 'x');
    sink->Write(Line("1"));
    sink->Write(Line(text));
    sink->Write(Line("2"));
    EXPECT_EQ(m_Folder.Read("trace.log"), Stored("2"));
    EXPECT_EQ(m_Folder.Read("trace.log.1"), Stored(text));
    EXPECT_EQ(m_Folder.Read("trace.log.2"), Stored("1"));
}

TEST_F(RotatingFileSink, ThrowsWhenTheFileCannotBeOpened)
{
    try {
        rotatingFileSink(m_Folder.Path() / "missing" / "trace.log");
        FAIL() << "opened a file in a folder that is not there";
    } catch (const std::system_error& error) {
        EXPECT_EQ(error.code(), std::errc::no_such_file_or_directory);
        EXPECT_NE(std::string(error.what()).find("trace.log"), std::string::npos);
    }
    EXPECT_THROW(rotatingFileSink(m_Folder.Path()), std::system_error);
}

TEST_F(RotatingFileSink, DropsLinesThatItCannotWrite)
{
    // A rotated file cannot replace a folder that is not empty.
    fs::create_directories(m_File.string() + ".1/inside");
    const auto sink = rotatingFileSink(m_File, m_LineSize, 1);
    sink->Write(Line("1"));
    sink->Write(Line("2"));
    EXPECT_EQ(m_Folder.Read("trace.log"), Stored("1"));

    fs::remove_all(m_File.string() + ".1");
    sink->Write(Line("3"));
    EXPECT_EQ(m_Folder.Read("trace.log"), Stored("3"));
    EXPECT_EQ(m_Folder.Read("trace.log.1"), Stored("1"));
}

} // namespace
