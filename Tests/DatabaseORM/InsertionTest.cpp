#include "StatementFixture.h"

#include <DatabaseORM/StatementBuilder.h>

using namespace TestSupport;
using testing::ElementsAre;
using testing::IsEmpty;

namespace {

/** The statements of an insert, made once and run several times. */
class Insertion : public StatementFixture
{
protected:
    std::int32_t Run(const DatabaseORM::insertion_t& insertion)
    {
        return DatabaseORM::runInsertion(m_Storage, insertion, DatabaseORM::QUERY_FAILED);
    }
};

} // namespace

TEST_F(Insertion, SendsNothingBeforeItRuns)
{
    AddSample();
    (void)DatabaseORM::makeInsertion(m_Storage, m_Sample);
    EXPECT_THAT(Statements(), IsEmpty());
}

TEST_F(Insertion, SendsTheSameStatementsAgainAndReadsTheKeyAnew)
{
    AddSample({.m_ForeignKeys = true});
    const DatabaseORM::insertion_t insertion = DatabaseORM::makeInsertion(m_Storage, m_Sample);
    m_Database->Answer({"NULL"});
    m_Database->Answer({});
    m_Database->Answer({"7"});
    EXPECT_EQ(Run(insertion), 1);
    EXPECT_EQ(Run(insertion), 8);
    const std::string maximum = "SELECT MAX(ID) FROM SampleTable";
    const std::string insert = "PRAGMA foreign_keys = ON; INSERT INTO SampleTable (Count, Size, Ratio, Name) "
                               "VALUES(-3, 9000000000, 1.500000, 'disk');";
    EXPECT_THAT(Statements(), ElementsAre(maximum, insert, maximum, insert));
}

TEST_F(Insertion, RunsAgainAfterAFailure)
{
    AddSample();
    const DatabaseORM::insertion_t insertion = DatabaseORM::makeInsertion(m_Storage, m_Sample);
    m_Database->Fail("database is locked");
    EXPECT_EQ(databaseError([&] { Run(insertion); }),
              "Storage query exception thrown! Cannot read ID from database! (database is locked)");
    EXPECT_EQ(Run(insertion), 1);
    EXPECT_EQ(Statements().size(), 3U);
}
