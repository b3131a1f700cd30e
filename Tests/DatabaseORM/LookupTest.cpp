#include "StatementFixture.h"

#include <DatabaseORM/StatementBuilder.h>

using namespace TestSupport;

namespace {

struct Other
{
    std::int32_t m_ID = 0;
};

class Lookup : public StatementFixture
{};

} // namespace

TEST_F(Lookup, FindsColumnAndTableNames)
{
    AddSample();
    EXPECT_EQ(DatabaseORM::columnName(m_Storage, &Sample::m_ID), "ID");
    EXPECT_EQ(DatabaseORM::columnName(m_Storage, &Sample::m_Count), "Count");
    EXPECT_EQ(DatabaseORM::columnName(m_Storage, &Sample::m_Size), "Size");
    EXPECT_EQ(DatabaseORM::columnName(m_Storage, &Sample::m_Ratio), "Ratio");
    EXPECT_EQ(DatabaseORM::columnName(m_Storage, &Sample::m_Name), "Name");
    EXPECT_EQ(DatabaseORM::tableName<Sample>(m_Storage), "SampleTable");
}

TEST_F(Lookup, TakesTheFirstMapAndTableOfTheModel)
{
    m_Storage.m_FieldMaps.push_back(nullptr);
    m_Storage.m_FieldMaps.push_back(std::make_shared<RaidDataModels::dbModelFieldsMap<Other>>("Other"));
    m_Storage.m_Tables.push_back(
        std::make_shared<DatabaseORM::table_t<Other>>("OtherTable", std::vector<DatabaseORM::column_t>{}));
    AddSample({.m_NameColumn = "First"});
    AddSample({.m_NameColumn = "Second"});
    EXPECT_EQ(DatabaseORM::columnName(m_Storage, &Sample::m_Name), "First");
    EXPECT_EQ(DatabaseORM::tableName<Sample>(m_Storage), "SampleTable");
}

TEST_F(Lookup, OfAMemberWithoutColumnOrName)
{
    AddSample({.m_NameColumn = ""});
    EXPECT_EQ(databaseError([&] { DatabaseORM::columnName(m_Storage, &Sample::m_Name); }),
              "Empty colName exception!");
    EXPECT_EQ(databaseError([&] { DatabaseORM::columnName(m_Storage, &Sample::m_Unbound); }),
              "Empty colName exception!");
}

TEST_F(Lookup, OfAnUnknownModel)
{
    AddSample();
    EXPECT_EQ(databaseError([&] { DatabaseORM::columnName(m_Storage, &Other::m_ID); }),
              "Storage query exception thrown! No such model map exist.");
    EXPECT_EQ(databaseError([&] { DatabaseORM::tableName<Other>(m_Storage); }),
              "Storage query exception thrown! No such model map exist.");
}
