#include "StatementFixture.h"

#include <DatabaseORM/StatementBuilder.h>

using namespace TestSupport;
using testing::ElementsAre;

namespace {

class Update : public StatementFixture
{};

} // namespace

TEST_F(Update, AssignsWithoutBlanksInColumnOrderAndLeavesOutTheKey)
{
    AddSample();
    DatabaseORM::update(m_Storage, m_Sample);
    EXPECT_THAT(Statements(), ElementsAre("UPDATE SampleTable SET Count=-3, Size=9000000000, Ratio=1.500000, "
                                          "Name='disk' WHERE ID = 5;"));
}

TEST_F(Update, KeepsColumnOrderAcrossKinds)
{
    auto map = std::make_shared<RaidDataModels::dbModelFieldsMap<Sample>>("SampleAlias");
    map->Bind(&Sample::m_ID, "ID");
    map->Bind(&Sample::m_Name, "Name");
    map->Bind(&Sample::m_Ratio, "Ratio");
    map->Bind(&Sample::m_Size, "Size");
    map->Bind(&Sample::m_Count, "Count");
    m_Storage.m_FieldMaps.push_back(map);
    AddTable(true, false);
    DatabaseORM::update(m_Storage, m_Sample);
    EXPECT_THAT(Statements(), ElementsAre("UPDATE SampleTable SET Name='disk', Ratio=1.500000, "
                                          "Size=9000000000, Count=-3 WHERE ID = 5;"));
}

TEST_F(Update, BeginsWithThePragmaWhenTheTableUsesForeignKeys)
{
    AddSample({.m_ForeignKeys = true});
    DatabaseORM::update(m_Storage, m_Sample);
    EXPECT_THAT(Statements(), ElementsAre("PRAGMA foreign_keys = ON; UPDATE SampleTable SET Count=-3, "
                                          "Size=9000000000, Ratio=1.500000, Name='disk' WHERE ID = 5;"));
}

TEST_F(Update, WritesNullMarkers)
{
    AddSample();
    m_Sample.m_Count = DatabaseORM::NULL_INTEGER;
    m_Sample.m_Name = "NULL";
    DatabaseORM::update(m_Storage, m_Sample);
    EXPECT_THAT(Statements(), ElementsAre("UPDATE SampleTable SET Count=NULL, Size=9000000000, "
                                          "Ratio=1.500000, Name=NULL WHERE ID = 5;"));
}

TEST_F(Update, NamesTheKeyIDWhateverTheFieldMapCallsIt)
{
    auto map = std::make_shared<RaidDataModels::dbModelFieldsMap<Sample>>("SampleAlias");
    map->Bind(&Sample::m_ID, "Number");
    map->Bind(&Sample::m_Name, "Name");
    m_Storage.m_FieldMaps.push_back(map);
    AddTable(true, false);
    m_Sample.m_ID = -7;
    DatabaseORM::update(m_Storage, m_Sample);
    EXPECT_THAT(Statements(), ElementsAre("UPDATE SampleTable SET Name='disk' WHERE ID = -7;"));
}

TEST_F(Update, TakesA64BitKeyAtTheLastPosition)
{
    AddSampleWithBigIntegerLast();
    DatabaseORM::update(m_Storage, m_Sample);
    EXPECT_THAT(Statements(),
                ElementsAre("UPDATE SampleTable SET Name='disk', Count=-3 WHERE ID = 9000000000;"));
}

TEST_F(Update, WithoutAKeyColumnSendsNothing)
{
    auto map = std::make_shared<RaidDataModels::dbModelFieldsMap<Sample>>("SampleAlias");
    map->Bind(&Sample::m_Name, "Name");
    map->Bind(&Sample::m_Count, "Count");
    m_Storage.m_FieldMaps.push_back(map);
    AddTable(true, false);
    EXPECT_EQ(databaseError([&] { DatabaseORM::update(m_Storage, m_Sample); }), "Empty colName exception!");
    EXPECT_TRUE(Statements().empty());
}

TEST_F(Update, WrapsAFailureOfTheStatement)
{
    AddSample();
    m_Database->Fail("database is locked");
    EXPECT_EQ(databaseError([&] { DatabaseORM::update(m_Storage, m_Sample); }),
              "Storage query exception thrown! (database is locked)");
}

TEST_F(Update, WithoutFieldMapOrTableSendsNothing)
{
    AddTable(true, false);
    EXPECT_EQ(databaseError([&] { DatabaseORM::update(m_Storage, m_Sample); }),
              "Storage query exception thrown! No such model in map exist.");
    AddSample();
    m_Storage.m_Tables.clear();
    EXPECT_EQ(databaseError([&] { DatabaseORM::update(m_Storage, m_Sample); }),
              "Storage query exception thrown! No such model in map exist.");
    EXPECT_TRUE(Statements().empty());
}

TEST_F(Update, WithANamelessColumnSendsNothing)
{
    AddSample({.m_NameColumn = ""});
    EXPECT_EQ(databaseError([&] { DatabaseORM::update(m_Storage, m_Sample); }), "Empty colName exception!");
    EXPECT_TRUE(Statements().empty());
}
