#include "DatabaseFixture.h"

#include <thread>

using namespace TestSupport;
using namespace std::string_literals;
using testing::ElementsAre;
using testing::EndsWith;
using testing::HasSubstr;
using testing::IsEmpty;
using testing::StartsWith;

namespace {

class Query : public DatabaseFixture
{
protected:
    std::string ErrorOf(const std::string& sql)
    {
        return databaseError([&] { m_Storage->m_Access->query(sql); });
    }

    Values Run(const std::string& sql) { return m_Storage->m_Access->query(sql); }
};

} // namespace

TEST_F(Query, GivesValuesRowByRow)
{
    EXPECT_THAT(Run("VALUES (1, 'a'), (2, 'b')"), ElementsAre("1", "a", "2", "b"));
}

TEST_F(Query, RunsEveryStatement)
{
    EXPECT_THAT(
        Run("CREATE TABLE T (X); INSERT INTO T VALUES (3); -- a comment\n SELECT X FROM T; SELECT 4;;"),
        ElementsAre("3", "4"));
}

TEST_F(Query, GivesNullAsText)
{
    EXPECT_THAT(Run("SELECT NULL, 'NULL', ''"), ElementsAre("NULL", "NULL", ""));
    EXPECT_THAT(Run("SELECT MAX(ID) FROM PD"), ElementsAre("NULL"));
}

TEST_F(Query, KeepsBytesAfterAZeroByteInAValue)
{
    EXPECT_THAT(Run("SELECT CAST(x'410042' AS TEXT)"), ElementsAre("A\0B"s));
}

TEST_F(Query, OfNothingGivesNothing)
{
    EXPECT_THAT(Run(""), IsEmpty());
    EXPECT_THAT(Run("  -- nothing"), IsEmpty());
    EXPECT_THAT(Run(";;"), IsEmpty());
}

TEST_F(Query, RefusesAStatementWithAZeroByte)
{
    EXPECT_THAT(ErrorOf("DELETE FROM PD\0 WHERE ID = 1"s), EndsWith("the statement holds a zero byte"));
}

TEST_F(Query, NamesFileAndReason)
{
    EXPECT_EQ(ErrorOf("SELECT * FROM Missing"), "database '" + File().string() + "': no such table: Missing");
    setDatabaseFile({});
    m_Storage = getDatabasePointer();
    EXPECT_EQ(ErrorOf("SELECT * FROM Missing"), "database in memory: no such table: Missing");
}

TEST_F(Query, ThatFailsKeepsTheStatementsBeforeIt)
{
    ErrorOf("CREATE TABLE T (X); INSERT INTO T VALUES (1); nonsense");
    EXPECT_THAT(Run("SELECT X FROM T"), ElementsAre("1"));
}

TEST_F(Query, ThatFailsLeavesNoTransactionOpen)
{
    Run("CREATE TABLE T (X)");
    ErrorOf("BEGIN; INSERT INTO T VALUES (1); nonsense");
    Run("BEGIN; INSERT INTO T VALUES (2); COMMIT");
    EXPECT_THAT(Run("SELECT X FROM T"), ElementsAre("2"));
}

TEST_F(Query, WorksOnWriteAheadLogWithoutWaitingForTheDisk)
{
    EXPECT_THAT(Run("PRAGMA journal_mode; PRAGMA synchronous; PRAGMA recursive_triggers"),
                ElementsAre("wal", "1", "1"));
}

TEST_F(Query, ServesSeveralThreads)
{
    const auto insertMany = [this](int thread) {
        for (int number = 0; number < 100; ++number)
            Run("INSERT INTO PD (DriveKey) VALUES('" + std::to_string(thread * 1000 + number) + "')");
    };
    std::thread other(insertMany, 1);
    insertMany(2);
    other.join();
    EXPECT_THAT(Run("SELECT COUNT(*) FROM PD"), ElementsAre("200"));
}
