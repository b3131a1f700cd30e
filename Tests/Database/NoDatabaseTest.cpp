#include "DatabaseFixture.h"

#include <Database/Maintenance.h>

using namespace TestSupport;
using DatabaseORM::condition_t;
using RaidDataModels::PD;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/** A storage that keeps nothing. */
class NoDatabase : public DatabaseFixture
{
protected:
    NoDatabase()
    {
        keepNoRows();
        m_Storage = getDatabasePointer();
    }
};

} // namespace

TEST_F(NoDatabase, AnswersEveryOperationAsEmptyTablesDo)
{
    const condition_t byKey(&PD::m_DriveKey, "S1");
    for (int round = 0; round < 2; ++round) {
        EXPECT_EQ(DatabaseORM::insert(*m_Storage, makeDrive("S1")), 1);
        EXPECT_EQ(DatabaseORM::insert(*m_Storage, makeAdapter(1, "S1")), 1);
        EXPECT_THAT(Query("SELECT MAX(ID) FROM PD"), ElementsAre("NULL"));
        EXPECT_EQ(DatabaseORM::max(*m_Storage, &PD::m_ID), 0U);
        EXPECT_TRUE(DatabaseORM::select(*m_Storage, byKey).empty());
        DatabaseORM::update(*m_Storage, makeDrive("S1"));
        DatabaseORM::remove(*m_Storage, byKey);
    }
}

TEST_F(NoDatabase, ReadsNoStatementAndMakesNoFile)
{
    EXPECT_THAT(Query("no statement at all"), IsEmpty());
    EXPECT_THAT(Query(std::string("SELECT 1\0;", 10)), IsEmpty());
    EXPECT_TRUE(std::filesystem::is_empty(Folder()));
}

TEST_F(NoDatabase, IsSharedUntilAFileIsSet)
{
    EXPECT_EQ(getDatabasePointer(), m_Storage);
    const auto former = m_Storage;
    Reopen();
    EXPECT_NE(m_Storage, former);
    EXPECT_EQ(DatabaseORM::insert(*m_Storage, makeDrive("S1")), 1);
    EXPECT_EQ(DatabaseORM::insert(*m_Storage, makeDrive("S2")), 2);
    EXPECT_THAT(former->m_Access->query("SELECT MAX(ID) FROM PD"), ElementsAre("NULL"));
}

TEST_F(NoDatabase, KnowsTheModelsOfAnyOtherStorage)
{
    const auto none = m_Storage;
    Reopen();
    ASSERT_EQ(none->m_Tables.size(), m_Storage->m_Tables.size());
    for (std::size_t index = 0; index < none->m_Tables.size(); ++index)
        EXPECT_EQ(none->m_Tables[index]->Name(), m_Storage->m_Tables[index]->Name());
    EXPECT_EQ(none->m_FieldMaps.size(), m_Storage->m_FieldMaps.size());
}

TEST_F(NoDatabase, HasNothingToMaintain)
{
    EXPECT_NO_THROW(checkDatabase());
    (void)DatabaseORM::insert(*m_Storage, makeDrive("S1"));
    EXPECT_EQ(countDatabaseChanges(), 0);
    EXPECT_TRUE(removeOtherObjects({1}, {"S1"}, countDatabaseChanges()));
    EXPECT_FALSE(removeOtherObjects({1}, {"S1"}, 1)) << "a count that it has never given";
    EXPECT_EQ(takeDatabaseFailure(), std::nullopt);
}
