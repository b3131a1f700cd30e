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
    /** What earlier tests of this process left is gone. */
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

    /** Why a file with this content is refused. */
    std::string RefusalOf(const std::string& content) const
    {
        m_Folder.Write("Numbers.txt", content);
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
    EXPECT_EQ(RefusalOf("# comment\n\n5 0 1 0 0 localhost\n1 0 2 0 0 localhost\n"), "none");
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

// French groups digits with a blank, and a blank stands between the numbers of a line.
TEST_F(AdapterNumbers, AreKeptWhateverTheProcessesLocale)
{
    const TestSupport::CGroupingLocale locale("\3", ' ');
    EXPECT_EQ(RefusalOf("1234 0 2 0 0 localhost\n"), "none");
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

TEST_F(AdapterNumbers, ADamagedFileIsRefusedAndChangesNothing)
{
    EXPECT_EQ(NumberOf(42), 1);
    for (const char* line : {"x", "1", "1 0 1 0 localhost", "1 0 1 0 0", "1 0 1 0 0 ", "0 0 1 0 0 localhost",
                             "-1 0 1 0 0 localhost", "99999999999 0 1 0 0 localhost", "3 0 3 0 0 localhost",
                             "4 0 2 0 0 localhost"})
        EXPECT_THAT(RefusalOf("3 0 2 0 0 localhost\n" + std::string(line) + "\n"),
                    HasSubstr("Numbers.txt is damaged in line 2"))
            << line;
    EXPECT_EQ(NumberOf(42), 1);
    EXPECT_EQ(NumberOf(2), 2);
}

TEST_F(AdapterNumbers, AFileThatCannotBeReadIsRefused)
{
    std::filesystem::create_directory(m_File);
    EXPECT_THROW(PI::restoreAdapterNumbers(m_File), std::runtime_error);
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
