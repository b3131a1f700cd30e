#include "DatabaseFixture.h"

using namespace TestSupport;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

/** Repeated statements, which the database keeps prepared. */
class StatementCache : public DatabaseFixture
{};

} // namespace

TEST_F(StatementCache, ARepeatedQuerySeesWhatChangedMeanwhile)
{
    Query("CREATE TABLE T (X)");
    for (int count = 0; count < 3; ++count) {
        EXPECT_THAT(Query("SELECT COUNT(*) FROM T"), ElementsAre(std::to_string(count)));
        Query("INSERT INTO T VALUES (1)");
    }
}

TEST_F(StatementCache, ARepeatedQuerySeesATableOfAnotherShape)
{
    Query("CREATE TABLE T (X)");
    Query("INSERT INTO T VALUES (1)");
    EXPECT_THAT(Query("SELECT * FROM T"), ElementsAre("1"));
    Query("ALTER TABLE T ADD COLUMN Y DEFAULT 2");
    EXPECT_THAT(Query("SELECT * FROM T"), ElementsAre("1", "2"));
    Query("DROP TABLE T");
    EXPECT_THAT(databaseError([&] { Query("SELECT * FROM T"); }), HasSubstr("no such table"));
    Query("CREATE TABLE T (Z)");
    Query("INSERT INTO T VALUES (3)");
    EXPECT_THAT(Query("SELECT * FROM T"), ElementsAre("3"));
}

TEST_F(StatementCache, AStatementThatFailedCanFailAndSucceedAgain)
{
    Query("CREATE TABLE T (X UNIQUE)");
    for (int round = 0; round < 3; ++round) {
        Query("INSERT INTO T VALUES (1)");
        for (int attempt = 0; attempt < 2; ++attempt)
            EXPECT_THAT(databaseError([&] { Query("INSERT INTO T VALUES (1)"); }), HasSubstr("UNIQUE"));
        Query("DELETE FROM T WHERE X = 1");
    }
    EXPECT_THAT(Query("SELECT COUNT(*) FROM T"), ElementsAre("0"));
}

TEST_F(StatementCache, ASettingTakesEffectEveryTime)
{
    for (int round = 0; round < 3; ++round) {
        Query("PRAGMA foreign_keys = ON");
        EXPECT_THAT(Query("PRAGMA foreign_keys"), ElementsAre("1"));
        Query("PRAGMA foreign_keys = OFF");
        EXPECT_THAT(Query("PRAGMA foreign_keys"), ElementsAre("0"));
    }
}

TEST_F(StatementCache, ATextOfSeveralStatementsRunsThemAllEveryTime)
{
    Query("CREATE TABLE T (X)");
    for (const char* count : {"2", "4", "6"})
        EXPECT_THAT(Query("INSERT INTO T VALUES (1); INSERT INTO T VALUES (2); SELECT COUNT(*) FROM T"),
                    ElementsAre(count));
}

TEST_F(StatementCache, MoreStatementsThanItKeepsAllRun)
{
    Query("CREATE TABLE T (X)");
    constexpr int statements = 120;
    for (int round = 1; round <= 2; ++round) {
        for (int number = 0; number < statements; ++number)
            Query("INSERT INTO T SELECT " + std::to_string(number) + " AS N" + std::to_string(number));
        EXPECT_THAT(Query("SELECT COUNT(*), SUM(X) FROM T"),
                    ElementsAre(std::to_string(round * statements),
                                std::to_string(round * statements * (statements - 1) / 2)));
    }
}

TEST_F(StatementCache, LeavesTheFileFreeForOthersBetweenStatements)
{
    Query("CREATE TABLE T (X)");
    Query("INSERT INTO T VALUES (1)");
    Query("SELECT X FROM T");
    const auto first = m_Storage;
    Reopen();
    Query("INSERT INTO T VALUES (2)");
    EXPECT_THAT(first->m_Access->query("SELECT X FROM T"), ElementsAre("1", "2"));
    Query("DROP TABLE T");
}
