#include "StatementFixture.h"
#include "Support/GroupingLocale.h"

#include <DatabaseORM/StatementBuilder.h>

#include <locale>
#include <sstream>

using namespace TestSupport;
using testing::ElementsAre;

namespace {

class Max : public StatementFixture
{};

} // namespace

TEST_F(Max, AsksForTheColumnsMaximum)
{
    AddSample({.m_ForeignKeys = true});
    m_Database->Answer({"7"});
    m_Database->Answer({"8"});
    EXPECT_EQ(DatabaseORM::max(m_Storage, &Sample::m_Count), 7U);
    EXPECT_EQ(DatabaseORM::max(m_Storage, &Sample::m_Size), 8U);
    EXPECT_THAT(Statements(),
                ElementsAre("SELECT MAX(Count) FROM SampleTable", "SELECT MAX(Size) FROM SampleTable"));
}

TEST_F(Max, IsReadTheSameWhateverTheProcessesLocale)
{
    AddSample();
    const CGroupingLocale locale;
    m_Database->Answer({"1.234"});
    EXPECT_EQ(DatabaseORM::max(m_Storage, &Sample::m_ID), 1U);
}

TEST_F(Max, ReadsAnUnsigned32BitNumberAsATextStreamDoes)
{
    AddSample();
    m_Database->Answer({"4294967295"});
    m_Database->Answer({"4294967296"});
    m_Database->Answer({"NULL"});
    m_Database->Answer({});
    m_Database->Answer({" 12 and more"});
    EXPECT_EQ(DatabaseORM::max(m_Storage, &Sample::m_ID), 4294967295U);
    EXPECT_EQ(DatabaseORM::max(m_Storage, &Sample::m_ID), 4294967295U);
    EXPECT_EQ(DatabaseORM::max(m_Storage, &Sample::m_ID), 0U);
    EXPECT_EQ(DatabaseORM::max(m_Storage, &Sample::m_ID), 0U);
    EXPECT_EQ(DatabaseORM::max(m_Storage, &Sample::m_ID), 12U);
}

TEST_F(Max, ReadsOddTextsAsATextStreamDoes)
{
    AddSample();
    for (const char* text : {"",
                             " ",
                             "-",
                             "+",
                             "-5",
                             "+7",
                             "- 5",
                             "+-5",
                             "--5",
                             "007",
                             "0x10",
                             "1e3",
                             "9.9",
                             "\t\n\v\f\r8",
                             "-4294967295",
                             "-4294967296",
                             "+4294967296",
                             "4294967295x",
                             "99999999999999999999999",
                             "N",
                             "\xC2\xA0"
                             "5"}) {
        std::istringstream stream(text);
        stream.imbue(std::locale::classic());
        std::uint32_t expected = 0;
        stream >> expected;
        m_Database->Answer({text});
        EXPECT_EQ(DatabaseORM::max(m_Storage, &Sample::m_ID), expected) << text;
    }
}

TEST_F(Max, WrapsAFailureOfTheStatement)
{
    AddSample();
    m_Database->Fail("no such column: ID");
    EXPECT_EQ(databaseError([&] { DatabaseORM::max(m_Storage, &Sample::m_ID); }),
              "Storage query exception thrown! (no such column: ID)");
}

TEST_F(Max, WithoutFieldMapSendsNothing)
{
    AddTable(true, false);
    EXPECT_EQ(databaseError([&] { DatabaseORM::max(m_Storage, &Sample::m_ID); }),
              "Storage query exception thrown! No such model map exist.");
    EXPECT_TRUE(Statements().empty());
}
