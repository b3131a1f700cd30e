#include "Support/GroupingLocale.h"
#include "Support/TemporaryFolder.h"

#include <PI/AdapterID.h>
#include <PI/AdapterNumbers.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>

namespace {

using testing::HasSubstr;

class AdapterNumbers : public testing::Test
{
protected:
    /** Clears what earlier tests of this process left. */
    AdapterNumbers() { PI::restoreAdapterNumbers(m_File); }

    static std::int32_t NumberOf(std::int32_t bus, std::int32_t segment = 0,
                                 const std::string& host = "localhost")
    {
        PI::CGlobalAdapterID id(host);
        id.SetSegment(segment);
        id.SetBus(bus);
        id.GenerateUniqueAdapterNumber();
        return id.GetGlobalAdapterNumber();
    }

    std::string Content() const { return m_Folder.Read("Numbers.txt"); }

    /** The message about a file with this content. */
    std::string ToldOf(const std::string& content) const
    {
        m_Folder.Write("Numbers.txt", content);
        return PI::restoreAdapterNumbers(m_File).value_or("nothing");
    }

    /** Why the file is refused. */
    std::string Refusal() const
    {
        try {
            PI::restoreAdapterNumbers(m_File);
        } catch (const std::runtime_error& wrong) {
            return wrong.what();
        }
        return "none";
    }

    TestSupport::CTemporaryFolder m_Folder;
    const std::filesystem::path m_File = m_Folder.Path() / "Numbers.txt";
};

} // namespace

TEST_F(AdapterNumbers, StayWithTheirLocations)
{
    EXPECT_EQ(NumberOf(9), 1);
    EXPECT_EQ(NumberOf(3, 1), 2);
    EXPECT_EQ(NumberOf(3, 0, "some other host"), 1);
    EXPECT_EQ(NumberOf(-7), 3);
    PI::storeAdapterNumbers(m_File);
    PI::restoreAdapterNumbers(m_Folder.Path() / "missing");
    EXPECT_EQ(NumberOf(3, 1), 1);
    PI::restoreAdapterNumbers(m_File);
    EXPECT_EQ(NumberOf(-7), 3);
    EXPECT_EQ(NumberOf(3, 1), 2);
    EXPECT_EQ(NumberOf(9), 1);
    EXPECT_EQ(NumberOf(3, 0, "some other host"), 1);
    EXPECT_EQ(NumberOf(4), 4);
}

TEST_F(AdapterNumbers, NewLocationsTakeTheLowestFreeNumber)
{
    EXPECT_EQ(ToldOf("# comment\n\n5 0 1 0 0 localhost\n1 0 2 0 0 localhost\n"), "nothing");
    EXPECT_EQ(NumberOf(1), 5);
    EXPECT_EQ(NumberOf(2), 1);
    EXPECT_EQ(NumberOf(7), 2);
    EXPECT_EQ(NumberOf(8), 3);
    EXPECT_EQ(NumberOf(9), 4);
    EXPECT_EQ(NumberOf(10), 6);
}

TEST_F(AdapterNumbers, AreWrittenOneALine)
{
    NumberOf(2);
    NumberOf(1, 3);
    PI::storeAdapterNumbers(m_File);
    EXPECT_THAT(Content(), testing::EndsWith("host.\n1 0 2 0 0 localhost\n2 3 1 0 0 localhost\n"));
}

// French groups digits with a blank, and blanks separate the numbers of a line.
TEST_F(AdapterNumbers, AreKeptWhateverTheProcessesLocale)
{
    const TestSupport::CGroupingLocale locale("\3", ' ');
    EXPECT_EQ(ToldOf("1234 0 2 0 0 localhost\n"), "nothing");
    EXPECT_EQ(NumberOf(2), 1234);
    PI::storeAdapterNumbers(m_File);
    EXPECT_THAT(Content(), testing::EndsWith("\n1234 0 2 0 0 localhost\n"));
}

TEST_F(AdapterNumbers, AnUnchangedFileIsLeftAlone)
{
    NumberOf(1);
    PI::storeAdapterNumbers(m_File);
    const auto then = std::filesystem::last_write_time(m_File) - std::chrono::hours(1000);
    std::filesystem::last_write_time(m_File, then);
    PI::storeAdapterNumbers(m_File);
    EXPECT_EQ(std::filesystem::last_write_time(m_File), then);
    NumberOf(2);
    PI::storeAdapterNumbers(m_File);
    EXPECT_NE(std::filesystem::last_write_time(m_File), then);
}

TEST_F(AdapterNumbers, OfGoodLinesHoldBesideADamagedOne)
{
    for (const char* line : {"x", "1", "1 0 1 0 localhost", "1 0 1 0 0", "1 0 1 0 0 ", "0 0 1 0 0 localhost",
                             "-1 0 1 0 0 localhost", "99999999999 0 1 0 0 localhost", "3 0 3 0 0 localhost",
                             "4 0 2 0 0 localhost"}) {
        const std::string content =
            "3 0 2 0 0 localhost\n" + std::string(line) + "\ny\n1 0 4 0 0 localhost\n";
        EXPECT_EQ(ToldOf(content), m_File.string() + " is damaged in line 2. It was set aside as " +
                                       m_File.string() + ".damaged, and its good lines hold")
            << line;
        EXPECT_EQ(NumberOf(2), 3) << line;
        EXPECT_EQ(NumberOf(4), 1) << line;
        EXPECT_EQ(NumberOf(77), 2) << line;
        PI::storeAdapterNumbers(m_File);
        EXPECT_THAT(Content(),
                    testing::EndsWith("\n3 0 2 0 0 localhost\n1 0 4 0 0 localhost\n2 0 77 0 0 localhost\n"));
        EXPECT_EQ(PI::restoreAdapterNumbers(m_File), std::nullopt);
        EXPECT_EQ(m_Folder.Read("Numbers.txt.damaged"), content);
        std::filesystem::remove(m_File.string() + ".damaged");
    }
}

TEST_F(AdapterNumbers, AFileWithoutItsEndIsDamagedInItsLastLine)
{
    const std::string whole = "3 0 2 0 0 localhost\n1 0 4 0 0 localhost\n";
    for (const auto& [length, line] : {std::pair<std::size_t, int>(whole.size() - 1, 2),
                                       {whole.size() - 6, 2},
                                       {22, 2},
                                       {19, 1},
                                       {0, 1}}) {
        const std::string torn = whole.substr(0, length);
        EXPECT_THAT(ToldOf(torn), HasSubstr(" is damaged in line " + std::to_string(line) + ". ")) << torn;
        EXPECT_EQ(m_Folder.Read("Numbers.txt.damaged"), torn);
        std::filesystem::remove(m_File.string() + ".damaged");
    }
    ToldOf(whole.substr(0, whole.size() - 1));
    EXPECT_EQ(NumberOf(4), 1) << "a line that only lacks its end holds";
}

TEST_F(AdapterNumbers, ThatWereSetAsideAreNotOverwritten)
{
    for (const char* content : {"x\n", "y\n", "x\n"})
        ToldOf(content);
    EXPECT_EQ(m_Folder.Read("Numbers.txt.damaged"), "x\n");
    EXPECT_EQ(m_Folder.Read("Numbers.txt.damaged2"), "y\n");
    EXPECT_FALSE(std::filesystem::exists(m_File.string() + ".damaged3")) << "they are there already";
}

TEST_F(AdapterNumbers, AFileThatCannotBeReadIsRefusedAndLeftAlone)
{
    EXPECT_EQ(NumberOf(42), 1);
    std::filesystem::create_directory(m_File);
    EXPECT_EQ(Refusal(), m_File.string() + " is no regular file");
    EXPECT_EQ(NumberOf(42), 1);
    EXPECT_EQ(NumberOf(2), 2);
    // The file can be read again by now, but the present numbers were not read from it.
    std::filesystem::remove(m_File);
    m_Folder.Write("Numbers.txt", "5 0 2 0 0 localhost\n");
    PI::storeAdapterNumbers(m_File);
    EXPECT_EQ(Content(), "5 0 2 0 0 localhost\n");
    EXPECT_EQ(PI::restoreAdapterNumbers(m_File), std::nullopt);
    EXPECT_EQ(NumberOf(3), 1);
    PI::storeAdapterNumbers(m_File);
    EXPECT_THAT(Content(), HasSubstr("1 0 3 0 0 localhost\n"));
}

TEST_F(AdapterNumbers, AFolderThatIsMissingIsReported)
{
    try {
        PI::storeAdapterNumbers(m_Folder.Path() / "missing" / "Numbers.txt");
        ADD_FAILURE();
    } catch (const std::runtime_error& wrong) {
        EXPECT_THAT(wrong.what(), HasSubstr("Numbers.txt cannot be written"));
    }
}
