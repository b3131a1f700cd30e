#include "StatementFixture.h"

#include <DatabaseORM/StatementBuilder.h>

#include <limits>
#include <string>
#include <utility>

using namespace TestSupport;
using testing::ElementsAre;

namespace {

class Insert : public StatementFixture
{};

/** The database's answer for the largest key, and the identifier that an insert then gives. */
using Maximum = std::pair<std::string, std::int32_t>;

class InsertKey : public StatementFixture, public testing::WithParamInterface<Maximum>
{};

} // namespace

TEST_F(Insert, LeavesOutTheGeneratedKeyAndReadsItsMaximumFirst)
{
    AddSample();
    m_Database->Answer({"7"});
    EXPECT_EQ(DatabaseORM::insert(m_Storage, m_Sample), 8);
    EXPECT_THAT(Statements(), ElementsAre("SELECT MAX(ID) FROM SampleTable",
                                          "INSERT INTO SampleTable (Count, Size, Ratio, Name) "
                                          "VALUES(-3, 9000000000, 1.500000, 'disk');"));
}

TEST_F(Insert, WithoutGeneratedKeyNamesNoColumnsAndReturnsZero)
{
    AddSample({.m_GeneratedKey = false});
    EXPECT_EQ(DatabaseORM::insert(m_Storage, m_Sample), 0);
    EXPECT_THAT(Statements(),
                ElementsAre("INSERT INTO SampleTable VALUES(5, -3, 9000000000, 1.500000, 'disk');"));
}

TEST_F(Insert, BeginsWithThePragmaWhenTheTableUsesForeignKeys)
{
    AddSample({.m_ForeignKeys = true});
    DatabaseORM::insert(m_Storage, m_Sample);
    EXPECT_THAT(Statements(), ElementsAre("SELECT MAX(ID) FROM SampleTable",
                                          "PRAGMA foreign_keys = ON; INSERT INTO SampleTable (Count, Size, "
                                          "Ratio, Name) VALUES(-3, 9000000000, 1.500000, 'disk');"));
}

TEST_F(Insert, WritesNullForTheMarkersOf32BitIntegersAndTextsOnly)
{
    AddSample({.m_GeneratedKey = false});
    DatabaseORM::insert(m_Storage, Sample{.m_ID = DatabaseORM::NULL_INTEGER,
                                          .m_Count = DatabaseORM::NULL_INTEGER,
                                          .m_Size = DatabaseORM::NULL_BIG_INTEGER,
                                          .m_Ratio = DatabaseORM::NULL_DOUBLE,
                                          .m_Name = "NULL",
                                          .m_Unbound = ""});
    EXPECT_THAT(Statements(), ElementsAre("INSERT INTO SampleTable VALUES(NULL, NULL, -1, 0.000000, NULL);"));
}

TEST_F(Insert, QuotesTextsAsTheyStand)
{
    AddSample({.m_GeneratedKey = false});
    m_Sample.m_Name = "NULL ";
    DatabaseORM::insert(m_Storage, m_Sample);
    m_Sample.m_Name = "it''s; --";
    DatabaseORM::insert(m_Storage, m_Sample);
    m_Sample.m_Name = "";
    DatabaseORM::insert(m_Storage, m_Sample);
    EXPECT_THAT(Statements(),
                ElementsAre("INSERT INTO SampleTable VALUES(5, -3, 9000000000, 1.500000, 'NULL ');",
                            "INSERT INTO SampleTable VALUES(5, -3, 9000000000, 1.500000, 'it''s; --');",
                            "INSERT INTO SampleTable VALUES(5, -3, 9000000000, 1.500000, '');"));
}

TEST_F(Insert, TakesA64BitKeyAtTheLastPosition)
{
    AddSampleWithBigIntegerLast();
    m_Database->Answer({"41"});
    EXPECT_EQ(DatabaseORM::insert(m_Storage, m_Sample), 42);
    EXPECT_THAT(Statements(), ElementsAre("SELECT MAX(Size) FROM SampleTable",
                                          "INSERT INTO SampleTable (Name, Count) VALUES('disk', -3);"));
}

TEST_F(Insert, WithoutGeneratedKeyWritesA64BitIntegerAtTheLastPosition)
{
    AddSampleWithBigIntegerLast(false);
    EXPECT_EQ(DatabaseORM::insert(m_Storage, m_Sample), 0);
    EXPECT_THAT(Statements(), ElementsAre("INSERT INTO SampleTable VALUES('disk', -3, 9000000000);"));
}

TEST_F(Insert, TakesBothKeysWhenBothStandAtTheirPositions)
{
    auto map = std::make_shared<RaidDataModels::dbModelFieldsMap<Sample>>("SampleAlias");
    map->Bind(&Sample::m_ID, "ID");
    map->Bind(&Sample::m_Name, "Name");
    map->Bind(&Sample::m_Size, "Size");
    m_Storage.m_FieldMaps.push_back(map);
    AddTable(true, false);
    m_Database->Answer({"1"});
    m_Database->Answer({"10"});
    EXPECT_EQ(DatabaseORM::insert(m_Storage, m_Sample), 11);
    EXPECT_THAT(Statements(),
                ElementsAre("SELECT MAX(ID) FROM SampleTable", "SELECT MAX(Size) FROM SampleTable",
                            "INSERT INTO SampleTable (Name) VALUES('disk');"));
}

TEST_F(Insert, A32BitIntegerElsewhereIsNoKey)
{
    auto map = std::make_shared<RaidDataModels::dbModelFieldsMap<Sample>>("SampleAlias");
    map->Bind(&Sample::m_Name, "Name");
    map->Bind(&Sample::m_ID, "ID");
    m_Storage.m_FieldMaps.push_back(map);
    AddTable(true, false);
    EXPECT_EQ(DatabaseORM::insert(m_Storage, m_Sample), 0);
    EXPECT_THAT(Statements(), ElementsAre("INSERT INTO SampleTable (Name, ID) VALUES('disk', 5);"));
}

TEST_P(InsertKey, FollowsTheMaximum)
{
    AddSample();
    m_Database->Answer({GetParam().first});
    EXPECT_EQ(DatabaseORM::insert(m_Storage, m_Sample), GetParam().second);
}

INSTANTIATE_TEST_SUITE_P(Maxima, InsertKey,
                         testing::Values(Maximum{"NULL", 1}, Maximum{"0", 1}, Maximum{"7", 8},
                                         Maximum{"2147483646", 2147483647},
                                         Maximum{"2147483647", std::numeric_limits<std::int32_t>::min()},
                                         Maximum{"4294967294", -1}, Maximum{"4294967295", 1},
                                         Maximum{"5000000000", 1}));

TEST_F(Insert, GivesOneWhenTheMaximumHasNoValue)
{
    AddSample();
    EXPECT_EQ(DatabaseORM::insert(m_Storage, m_Sample), 1);
}

TEST_F(Insert, WrapsAFailureToReadTheMaximumInATextOfItsOwn)
{
    AddSample();
    m_Database->Fail("disk I/O error");
    EXPECT_EQ(databaseError([&] { DatabaseORM::insert(m_Storage, m_Sample); }),
              "Storage query exception thrown! Cannot read ID from database! (disk I/O error)");
    EXPECT_THAT(Statements(), ElementsAre("SELECT MAX(ID) FROM SampleTable"));
}

TEST_F(Insert, WrapsAFailureOfTheStatement)
{
    AddSample();
    m_Database->Answer({"1"});
    m_Database->Fail("database or disk is full");
    EXPECT_EQ(databaseError([&] { DatabaseORM::insert(m_Storage, m_Sample); }),
              "Storage query exception thrown! (database or disk is full)");
    EXPECT_EQ(Statements().size(), 2U);
}

TEST_F(Insert, LetsOtherExceptionsPass)
{
    class CBroken : public DatabaseWrapper::DatabaseDAO
    {
    public:
        std::vector<std::string> query(const std::string&) override { throw std::out_of_range("other"); }
    };
    AddSample();
    m_Storage.m_Access = std::make_shared<CBroken>();
    EXPECT_THROW(DatabaseORM::insert(m_Storage, m_Sample), std::out_of_range);
}

TEST_F(Insert, WithoutFieldMapSendsNothing)
{
    AddTable(true, false);
    EXPECT_EQ(databaseError([&] { DatabaseORM::insert(m_Storage, m_Sample); }),
              "Storage query exception thrown! No such model in map exist!");
    EXPECT_TRUE(Statements().empty());
}

TEST_F(Insert, WithoutTableSendsNothing)
{
    AddSample();
    m_Storage.m_Tables.clear();
    EXPECT_EQ(databaseError([&] { DatabaseORM::insert(m_Storage, m_Sample); }),
              "Storage query exception thrown! No such model in map exist!");
    EXPECT_TRUE(Statements().empty());
}

TEST_F(Insert, WithANamelessColumnSendsNothing)
{
    AddSample({.m_NameColumn = ""});
    EXPECT_EQ(databaseError([&] { DatabaseORM::insert(m_Storage, m_Sample); }), "Empty colName exception!");
    EXPECT_TRUE(Statements().empty());
}
