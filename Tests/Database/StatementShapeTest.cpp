#include "DatabaseFixture.h"

using namespace TestSupport;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

/** Statements that differ only in their values, which the database runs as one. */
class StatementShape : public DatabaseFixture
{
protected:
    StatementShape()
    {
        Query("CREATE TABLE T (ID INTEGER PRIMARY KEY, Name TEXT, Number INTEGER, Any)");
        Query("INSERT INTO T VALUES(1, 'one', 10, NULL); INSERT INTO T VALUES(2, 'it''s', -20, 'x')");
        Query("INSERT INTO T VALUES(3, '', 9007199254740993, 30); INSERT INTO T VALUES(4, '5', 0, '5')");
    }

    /** The result of a statement that has no shape because of its comment. */
    Values AsItStands(const std::string& sql) { return Query(sql + " -- as it stands"); }
};

} // namespace

TEST_F(StatementShape, ReadsWhatTheStatementAsItStandsReads)
{
    for (const char* const statement : {
             "SELECT * FROM T WHERE Name = 'one'",
             "SELECT * FROM T WHERE Name = 'it''s'",
             "SELECT * FROM T WHERE Name = ''",
             "SELECT * FROM T WHERE Name = 5",
             "SELECT * FROM T WHERE Number = '10'",
             "SELECT * FROM T WHERE Number = -20",
             "SELECT * FROM T WHERE Number = 9007199254740993",
             "SELECT * FROM T WHERE Any = 5",
             "SELECT * FROM T WHERE Any = '5'",
             "SELECT * FROM T WHERE (T.Name = 'one') AND (T.ID = '1')",
             "SELECT * FROM T WHERE Name LIKE 'i%' OR ID IN (1, 3)",
             "SELECT ID, Name FROM T ORDER BY 2",
             "SELECT ID, Name FROM T order by 2 DESC",
             "SELECT Number > 5, COUNT(*) FROM T GROUP BY 1",
             "SELECT \"Name\", 'Name', [ID], `Number` FROM T",
             "SELECT ID FROM T LIMIT 2",
             "SELECT 'a;b', 'c--d', '/*e*/', '?1' FROM T",
             "SELECT typeof(1), typeof('1'), typeof(1.5), typeof(x'31'), typeof(NULL), typeof(1e2)",
             "SELECT 7/2, 7/2.0, 0x10, 1e2, .5, 1e+2, -1, - 1, 3-1, 3--1\n",
             "SELECT 123456789012345678, 9223372036854775807, -9223372036854775808, 9223372036854775808",
             "SELECT ID || 'x' AS Joined FROM T",
             "SELECT $a, 1, 'b'",
             "SELECT ?, 1",
             "SELECT 0 AND COUNT(*) FROM T",
             "SELECT (0) AND COUNT(*) FROM T",
             "SELECT COUNT(*) FROM T WHERE abs(-9223372036854775807-1) OR 1",
             "SELECT * FROM T WHERE ID BETWEEN 2 AND 3",
             "SELECT 007, 00, 1 IN (1), NOT 0",
         }) {
        SCOPED_TRACE(statement);
        const Values expected = AsItStands(statement);
        EXPECT_EQ(Query(statement), expected);
        EXPECT_EQ(Query(statement), expected);
    }
}

TEST_F(StatementShape, WritesTheValuesOfEachStatement)
{
    const std::string texts[] = {"",   "'",  "''",   "a'b", "\\", "?",    ";",
                                 "--", "/*", "NULL", "12",  "\"", "\x01", "\xC3\xA9"};
    for (const std::string& text : texts) {
        SCOPED_TRACE(text);
        Query("UPDATE T SET Name='" + DatabaseORM::escapeQuotes(text) + "', Number=-7 WHERE ID = 2;");
        EXPECT_THAT(Query("SELECT Name, typeof(Name), Number, typeof(Number) FROM T WHERE ID = 2"),
                    ElementsAre(text, "text", "-7", "integer"));
    }
}

TEST_F(StatementShape, KeepsNothingOfAnEarlierStatementsValues)
{
    Query("INSERT INTO T VALUES(7, 'a long enough text to be kept elsewhere', 8, 'other')");
    Query("INSERT INTO T VALUES(9, NULL, 10, 'third')");
    Query("INSERT INTO T VALUES(11, 'twelve', 13, 'fourth')");
    EXPECT_THAT(Query("SELECT * FROM T WHERE ID > 6 ORDER BY ID"),
                ElementsAre("7", "a long enough text to be kept elsewhere", "8", "other", "9", "NULL", "10",
                            "third", "11", "twelve", "13", "fourth"));
}

TEST_F(StatementShape, SaysWhatIsWrongInTheWordsOfTheStatement)
{
    EXPECT_THAT(databaseError([&] { Query("SELECT * FROM T WHERE Name = 'one' 5"); }),
                HasSubstr("near \"5\""));
    EXPECT_THAT(databaseError([&] { Query("SELECT * FROM Nowhere WHERE Name = 'one'"); }),
                HasSubstr("no such table: Nowhere"));
    EXPECT_THAT(databaseError([&] { Query("SELECT * FROM T WHERE Name = 'one"); }),
                HasSubstr("unrecognized token: \"'one\""));
    EXPECT_THAT(databaseError([&] { Query("INSERT INTO T VALUES(1, 'x')"); }), HasSubstr("4 columns"));
    EXPECT_THAT(databaseError([&] { Query("DELETE FROM T WHERE Name = 'zz'1OR 1"); }),
                HasSubstr("unrecognized token: \"1OR\""));
    EXPECT_THAT(Query("SELECT COUNT(*) FROM T"), ElementsAre("4"));
}

TEST_F(StatementShape, ATextThatHoldsAStatementStaysAText)
{
    const std::string hostile = "x');DROP TABLE T;--";
    Query("INSERT INTO T VALUES(20, '" + DatabaseORM::escapeQuotes(hostile) + "', 1, 'y')");
    EXPECT_THAT(Query("SELECT ID FROM T WHERE Name = '" + DatabaseORM::escapeQuotes(hostile) + "'"),
                ElementsAre("20"));
}
