#include "LineCapture.h"
#include "Support/TemporaryFolder.h"

#include <TLX/LanguageSupport.h>

#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <thread>
#include <vector>

namespace {

using TLX::Language_Support::CLanguageSupport;
using Text = std::optional<std::string>;
using namespace std::string_view_literals;

class LanguageSupport : public testing::Test
{
protected:
    void SetUp() override { CLanguageSupport::SetFolder(m_Folder.Path()); }
    void TearDown() override { CLanguageSupport::SetFolder({}); }

    /** The text of `number` in a catalogue file with these contents. */
    Text In(std::string_view contents, std::uint32_t number) const
    {
        m_Folder.Write("Test.nls", contents);
        return CLanguageSupport::CLngFile("Test.nls", 25966, "utf-8", 1, {}).Text(number);
    }

    TestSupport::CTemporaryFolder m_Folder;
};

TEST_F(LanguageSupport, ACatalogueTellsWhatItWasMadeFrom)
{
    const CLanguageSupport::CLngFile file("Ostrel.nls", 25966, "utf-8", 1, {"first", "second"});
    EXPECT_EQ(file.FileName(), "Ostrel.nls");
    EXPECT_EQ(file.LanguageCode(), ('e' << 8U | 'n'));
    EXPECT_EQ(file.Encoding(), "utf-8");
    EXPECT_EQ(file.FormatNumber(), 1U);
    EXPECT_EQ(file.DefaultErrors(), (std::vector<std::string>{"first", "second"}));
}

TEST_F(LanguageSupport, ReadsNumberBlanksText)
{
    constexpr std::string_view CONTENTS = "# comment\n"
                                          "\n"
                                          "23081 Name\n"
                                          "21000 \t °C\r\n"
                                          "7 seven # eight \n"
                                          "4294967295 last";
    EXPECT_EQ(In(CONTENTS, 23081), "Name");
    EXPECT_EQ(In(CONTENTS, 21000), "°C");
    EXPECT_EQ(In(CONTENTS, 7), "seven # eight ");
    EXPECT_EQ(In(CONTENTS, 4294967295U), "last");
    EXPECT_EQ(In(CONTENTS, 8), std::nullopt);
}

TEST_F(LanguageSupport, TheLastEntryOfANumberCounts)
{
    EXPECT_EQ(In("5 old\n5 new\n", 5), "new");
}

TEST_F(LanguageSupport, PassesOverLinesOfAnotherShape)
{
    constexpr std::string_view CONTENTS =
        "1\n2 \n3text\n 4 text\n-5 text\n+6 text\n4294967303 text\n0x8 text\nnine\n10 ok\n";
    for (const std::uint32_t number : {0U, 1U, 2U, 3U, 4U, 5U, 6U, 7U, 8U, 9U})
        EXPECT_EQ(In(CONTENTS, number), std::nullopt) << number;
    EXPECT_EQ(In(CONTENTS, 10), "ok");
}

TEST_F(LanguageSupport, AMissingOrDamagedFileHasNoEntries)
{
    EXPECT_EQ(CLanguageSupport::CLngFile("Missing.nls", 25966, "utf-8", 1, {}).Text(1), std::nullopt);
    std::filesystem::create_directory(m_Folder.Path() / "Folder.nls");
    EXPECT_EQ(CLanguageSupport::CLngFile("Folder.nls", 25966, "utf-8", 1, {}).Text(1), std::nullopt);
    EXPECT_EQ(In("1 one\n2 \xff\n", 1), std::nullopt);
    EXPECT_EQ(In("", 1), std::nullopt);
    EXPECT_EQ(In("1 one", 1), "one");
}

TEST_F(LanguageSupport, IsReadAtTheFirstQuestionOnly)
{
    const CLanguageSupport::CLngFile file("Test.nls", 25966, "utf-8", 1, {});
    m_Folder.Write("Test.nls", "1 before\n");
    EXPECT_EQ(file.Text(1), "before");
    m_Folder.Write("Test.nls", "1 after\n");
    EXPECT_EQ(file.Text(1), "before");
}

TEST_F(LanguageSupport, IsReadAgainWhenTheFolderChanged)
{
    const CLanguageSupport::CLngFile file("Test.nls", 25966, "utf-8", 1, {});
    m_Folder.Write("Test.nls", "1 here\n");
    EXPECT_EQ(file.Text(1), "here");
    const TestSupport::CTemporaryFolder other;
    other.Write("Test.nls", "1 there\n");
    CLanguageSupport::SetFolder(other.Path());
    EXPECT_EQ(file.Text(1), "there");
    CLanguageSupport::SetFolder({});
    EXPECT_EQ(file.Text(1), std::nullopt);
}

TEST_F(LanguageSupport, FindAsksTheLoadedModulesInTheirOrder)
{
    m_Folder.Write("First.nls", "900001 first\n");
    m_Folder.Write("Second.nls", "900001 second\n900002 two\n");
    EXPECT_EQ(CLanguageSupport::Find(900001), std::nullopt);
    const CTestModule second(9201, "Second", "Second.nls");
    EXPECT_EQ(CLanguageSupport::Find(900001), "second");
    {
        const CTestModule third(9202, "Third", "First.nls");
        EXPECT_EQ(CLanguageSupport::Find(900001), "second");
    }
    EXPECT_EQ(CLanguageSupport::Find(900002), "two");
    EXPECT_EQ(CLanguageSupport::Find(900003), std::nullopt);
}

TEST_F(LanguageSupport, FindForgetsAnUnloadedModule)
{
    m_Folder.Write("First.nls", "900001 first\n");
    {
        const CTestModule module(9203, "First", "First.nls");
        EXPECT_EQ(CLanguageSupport::Find(900001), "first");
    }
    EXPECT_EQ(CLanguageSupport::Find(900001), std::nullopt);
}

TEST_F(LanguageSupport, IsSafeFromManyThreads)
{
    m_Folder.Write("First.nls", "900001 first\n");
    const TestSupport::CTemporaryFolder empty;
    const CTestModule module(9204, "First", "First.nls");
    const auto ask = [] {
        for (int round = 0; round < 100; ++round)
            EXPECT_EQ(CLanguageSupport::Find(900001).value_or("first"), "first");
    };
    const std::jthread first(ask);
    const std::jthread second(ask);
    for (int round = 0; round < 50; ++round)
        CLanguageSupport::SetFolder(round % 2 == 0 ? empty.Path() : m_Folder.Path());
}

} // namespace
