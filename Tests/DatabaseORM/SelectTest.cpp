#include "StatementFixture.h"

#include <DatabaseORM/StatementBuilder.h>

#include <limits>

using namespace TestSupport;
using DatabaseORM::compoundCondition_t;
using DatabaseORM::condition_t;
using testing::ElementsAre;

namespace {

class Select : public StatementFixture
{
protected:
    std::vector<Sample> All() { return DatabaseORM::select(m_Storage, condition_t(&Sample::m_Name, "disk")); }
};

} // namespace

TEST_F(Select, ByTextGivesTheMapsNameAsAlias)
{
    AddSample();
    EXPECT_TRUE(All().empty());
    EXPECT_THAT(Statements(), ElementsAre("SELECT * FROM SampleTable SampleAlias  WHERE Name = 'disk'"));
}

TEST_F(Select, ByIntegerQuotesTheNumber)
{
    AddSample();
    DatabaseORM::select(m_Storage, condition_t(&Sample::m_Count, 12));
    EXPECT_THAT(Statements(), ElementsAre("SELECT * FROM SampleTable SampleAlias  WHERE Count = '12'"));
}

TEST_F(Select, ByTwoConditionsOfEitherKind)
{
    AddSample();
    DatabaseORM::select(m_Storage,
                        compoundCondition_t<Sample>{{&Sample::m_Count, 3}, {&Sample::m_Name, "disk"}});
    DatabaseORM::select(m_Storage,
                        compoundCondition_t<Sample>{{&Sample::m_Name, "a"}, {&Sample::m_Name, "b"}});
    EXPECT_THAT(
        Statements(),
        ElementsAre("SELECT * FROM SampleTable SampleAlias  WHERE ( Count = '3') AND ( Name = 'disk') ",
                    "SELECT * FROM SampleTable SampleAlias  WHERE ( Name = 'a') AND ( Name = 'b') "));
}

TEST_F(Select, QualifiesColumnsWhenTheStorageSaysSo)
{
    AddSample();
    m_Storage.m_Qualify = true;
    All();
    DatabaseORM::select(m_Storage,
                        compoundCondition_t<Sample>{{&Sample::m_Count, 3}, {&Sample::m_Name, "disk"}});
    EXPECT_THAT(Statements(),
                ElementsAre("SELECT * FROM SampleTable SampleAlias  WHERE SampleAlias.Name = 'disk'",
                            "SELECT * FROM SampleTable SampleAlias  WHERE ( SampleAlias.Count = '3') AND "
                            "( SampleAlias.Name = 'disk') "));
}

TEST_F(Select, HasNoPragmaEvenWhenTheTableUsesForeignKeys)
{
    AddSample({.m_ForeignKeys = true});
    All();
    EXPECT_THAT(Statements(), ElementsAre("SELECT * FROM SampleTable SampleAlias  WHERE Name = 'disk'"));
}

TEST_F(Select, ReadsRowsColumnByColumn)
{
    AddSample();
    m_Database->Answer({"1", "-3", "9000000000", "1.5", "disk", "2", "4", "-5", "-0.25", ""});
    const std::vector<Sample> rows = All();
    ASSERT_EQ(rows.size(), 2U);
    EXPECT_EQ(rows[0].m_ID, 1);
    EXPECT_EQ(rows[0].m_Count, -3);
    EXPECT_EQ(rows[0].m_Size, 9'000'000'000);
    EXPECT_EQ(rows[0].m_Ratio, 1.5);
    EXPECT_EQ(rows[0].m_Name, "disk");
    EXPECT_EQ(rows[1].m_ID, 2);
    EXPECT_EQ(rows[1].m_Count, 4);
    EXPECT_EQ(rows[1].m_Size, -5);
    EXPECT_EQ(rows[1].m_Ratio, -0.25);
    EXPECT_EQ(rows[1].m_Name, "");
}

TEST_F(Select, ReadsNullAsEachKindsMarker)
{
    AddSample();
    m_Database->Answer({"NULL", "NULL", "NULL", "NULL", "NULL"});
    const std::vector<Sample> rows = All();
    ASSERT_EQ(rows.size(), 1U);
    EXPECT_EQ(rows[0].m_Count, std::numeric_limits<std::int32_t>::min());
    EXPECT_EQ(rows[0].m_Size, -1);
    EXPECT_EQ(rows[0].m_Ratio, 0x1p-126);
    EXPECT_EQ(rows[0].m_Name, "NULL");
}

TEST_F(Select, ReadsWhatIsNoNumberAsTheKindsMarkerAndGoesOn)
{
    AddSample();
    m_Database->Answer(
        {"", "x", "y", "z", "first", "3", "2147483648", "9223372036854775808", "1e999", "second"});
    const std::vector<Sample> rows = All();
    ASSERT_EQ(rows.size(), 2U);
    EXPECT_EQ(rows[0].m_ID, DatabaseORM::NULL_INTEGER);
    EXPECT_EQ(rows[0].m_Count, DatabaseORM::NULL_INTEGER);
    EXPECT_EQ(rows[0].m_Size, DatabaseORM::NULL_BIG_INTEGER);
    EXPECT_EQ(rows[0].m_Ratio, DatabaseORM::NULL_DOUBLE);
    EXPECT_EQ(rows[0].m_Name, "first");
    EXPECT_EQ(rows[1].m_ID, 3);
    EXPECT_EQ(rows[1].m_Count, DatabaseORM::NULL_INTEGER);
    EXPECT_EQ(rows[1].m_Size, DatabaseORM::NULL_BIG_INTEGER);
    EXPECT_EQ(rows[1].m_Ratio, DatabaseORM::NULL_DOUBLE);
    EXPECT_EQ(rows[1].m_Name, "second");
}

TEST_F(Select, StartsEachRowFromADefaultModel)
{
    AddSample();
    m_Database->Answer({"1", "1", "1", "1", "one"});
    EXPECT_EQ(All().at(0).m_Unbound, "");
}

TEST_F(Select, IgnoresAnIncompleteRow)
{
    AddSample();
    m_Database->Answer({"1", "1", "1", "1", "one", "2", "2"});
    EXPECT_EQ(All().size(), 1U);
}

TEST_F(Select, WrapsAFailureOfTheStatement)
{
    AddSample();
    m_Database->Fail("no such table: SampleTable");
    EXPECT_EQ(databaseError([&] { All(); }), "Storage query exception thrown! (no such table: SampleTable)");
}

TEST_F(Select, WithoutFieldMapOrTableSendsNothing)
{
    AddTable(true, false);
    EXPECT_EQ(databaseError([&] { All(); }), "Storage query exception thrown! No such model in map exist.");
    AddSample();
    m_Storage.m_Tables.clear();
    EXPECT_EQ(databaseError([&] { All(); }), "Storage query exception thrown! No such model in map exist.");
    EXPECT_TRUE(Statements().empty());
}

TEST_F(Select, ByAColumnWithoutNameSendsNothing)
{
    AddSample({.m_NameColumn = ""});
    EXPECT_EQ(databaseError([&] { All(); }), "Empty colName exception!");
    EXPECT_EQ(databaseError([&] { DatabaseORM::select(m_Storage, condition_t(&Sample::m_Unbound, "")); }),
              "Empty colName exception!");
    EXPECT_TRUE(Statements().empty());
}
