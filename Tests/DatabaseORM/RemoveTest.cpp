#include "StatementFixture.h"

#include <DatabaseORM/StatementBuilder.h>

using namespace TestSupport;
using DatabaseORM::compoundCondition_t;
using DatabaseORM::condition_t;
using testing::ElementsAre;

namespace {

class Remove : public StatementFixture
{};

} // namespace

TEST_F(Remove, ByText)
{
    AddSample();
    DatabaseORM::remove(m_Storage, condition_t(&Sample::m_Name, "disk"));
    EXPECT_THAT(Statements(), ElementsAre("DELETE FROM SampleTable  WHERE Name = 'disk'"));
}

TEST_F(Remove, ByIntegerQuotesTheNumber)
{
    AddSample();
    DatabaseORM::remove(m_Storage, condition_t(&Sample::m_Count, -12));
    EXPECT_THAT(Statements(), ElementsAre("DELETE FROM SampleTable  WHERE Count = '-12'"));
}

TEST_F(Remove, ByIntegerAndText)
{
    AddSample();
    DatabaseORM::remove(m_Storage,
                        compoundCondition_t<Sample>{{&Sample::m_Count, 3}, {&Sample::m_Name, "disk"}});
    EXPECT_THAT(Statements(),
                ElementsAre("DELETE FROM SampleTable  WHERE ( Count = '3') AND ( Name = 'disk') "));
}

TEST_F(Remove, QualifiesColumnsButGivesNoAlias)
{
    AddSample();
    m_Storage.m_Qualify = true;
    DatabaseORM::remove(m_Storage, condition_t(&Sample::m_Name, "disk"));
    DatabaseORM::remove(m_Storage,
                        compoundCondition_t<Sample>{{&Sample::m_Count, 3}, {&Sample::m_Name, "disk"}});
    EXPECT_THAT(Statements(), ElementsAre("DELETE FROM SampleTable  WHERE SampleAlias.Name = 'disk'",
                                          "DELETE FROM SampleTable  WHERE ( SampleAlias.Count = '3') AND "
                                          "( SampleAlias.Name = 'disk') "));
}

TEST_F(Remove, BeginsWithThePragmaWhenTheTableUsesForeignKeys)
{
    AddSample({.m_ForeignKeys = true});
    DatabaseORM::remove(m_Storage, condition_t(&Sample::m_Name, "disk"));
    EXPECT_THAT(Statements(),
                ElementsAre("PRAGMA foreign_keys = ON; DELETE FROM SampleTable  WHERE Name = 'disk'"));
}

TEST_F(Remove, ComparesMarkersAsTexts)
{
    AddSample();
    DatabaseORM::remove(m_Storage, condition_t(&Sample::m_Name, "NULL"));
    DatabaseORM::remove(m_Storage, condition_t(&Sample::m_Count, DatabaseORM::NULL_INTEGER));
    EXPECT_THAT(Statements(), ElementsAre("DELETE FROM SampleTable  WHERE Name = 'NULL'",
                                          "DELETE FROM SampleTable  WHERE Count = '-2147483648'"));
}

TEST_F(Remove, WrapsAFailureOfTheStatement)
{
    AddSample();
    m_Database->Fail("database is locked");
    EXPECT_EQ(databaseError([&] { DatabaseORM::remove(m_Storage, condition_t(&Sample::m_Name, "disk")); }),
              "Storage query exception thrown! (database is locked)");
}

TEST_F(Remove, WithoutFieldMapOrTableSendsNothing)
{
    AddTable(true, false);
    EXPECT_EQ(databaseError([&] { DatabaseORM::remove(m_Storage, condition_t(&Sample::m_Name, "disk")); }),
              "Storage query exception thrown! No such model in map exist.");
    AddSample();
    m_Storage.m_Tables.clear();
    EXPECT_EQ(databaseError([&] { DatabaseORM::remove(m_Storage, condition_t(&Sample::m_Name, "disk")); }),
              "Storage query exception thrown! No such model in map exist.");
    EXPECT_TRUE(Statements().empty());
}

TEST_F(Remove, ByAMemberWithoutColumnSendsNothing)
{
    AddSample();
    EXPECT_EQ(databaseError([&] { DatabaseORM::remove(m_Storage, condition_t(&Sample::m_Unbound, "disk")); }),
              "Empty colName exception!");
    EXPECT_TRUE(Statements().empty());
}
