#include "DatabaseFixture.h"

#include <sqlite3.h>

using namespace TestSupport;
using DatabaseORM::condition_t;
using RaidDataModels::Adapter;
using RaidDataModels::PD;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

namespace {

class Migration : public DatabaseFixture
{
protected:
    /** Writes the file as another version of the program would. */
    void WriteFile(const std::string& sql)
    {
        sqlite3* connection = nullptr;
        ASSERT_EQ(sqlite3_open(File().string().c_str(), &connection), SQLITE_OK);
        EXPECT_EQ(sqlite3_exec(connection, sql.c_str(), nullptr, nullptr, nullptr), SQLITE_OK)
            << sqlite3_errmsg(connection);
        sqlite3_close(connection);
    }

    Values Tables() { return Query("SELECT name FROM sqlite_master WHERE type = 'table' ORDER BY name"); }
};

} // namespace

TEST_F(Migration, AFreshFileGetsThePresentTables)
{
    EXPECT_THAT(Tables(), ElementsAre("Adapter", "PD", "Plugin"));
    EXPECT_THAT(Query("PRAGMA user_version"), ElementsAre("2"));
}

TEST_F(Migration, APresentFileIsLeftAlone)
{
    Query("SELECT 1");
    const Values before = Query("PRAGMA schema_version");
    Reopen();
    EXPECT_EQ(Query("PRAGMA schema_version"), before);
}

TEST_F(Migration, RowsOfFewerColumnsInAnotherOrderAreKept)
{
    WriteFile("CREATE TABLE PD (DriveKey TEXT, HostName TEXT, ID INTEGER PRIMARY KEY);"
              "INSERT INTO PD VALUES ('S1', 'localhost', 4), ('S2', NULL, 9);"
              "CREATE TABLE Adapter (ID INTEGER PRIMARY KEY, SerialNumber TEXT, AdapterNumber INTEGER);"
              "INSERT INTO Adapter VALUES (1, 'S1', 3);");
    const auto drives = DatabaseORM::select(*m_Storage, condition_t(&PD::m_DriveKey, "S1"));
    ASSERT_EQ(drives.size(), 1U);
    EXPECT_EQ(drives[0].m_ID, 4);
    EXPECT_EQ(drives[0].m_HostName, "localhost");
    EXPECT_EQ(drives[0].m_Location, "NULL");
    const auto second = DatabaseORM::select(*m_Storage, condition_t(&PD::m_DriveKey, "S2"));
    ASSERT_EQ(second.size(), 1U);
    EXPECT_EQ(second[0].m_HostName, "NULL");
    const auto adapters = DatabaseORM::select(*m_Storage, condition_t(&Adapter::m_AdapterNumber, 3));
    ASSERT_EQ(adapters.size(), 1U);
    EXPECT_EQ(adapters[0].m_Present, 0);
    EXPECT_EQ(adapters[0].m_SerialNumber, "S1");
    EXPECT_THAT(Tables(), ElementsAre("Adapter", "PD", "Plugin"));
    EXPECT_EQ(DatabaseORM::insert(*m_Storage, makeDrive("S3")), 10);
}

TEST_F(Migration, AFormerTableWithOtherColumnsStays)
{
    WriteFile("CREATE TABLE PD (ID INTEGER PRIMARY KEY, HostName TEXT, DriveKey TEXT, Colour TEXT);"
              "INSERT INTO PD VALUES (1, 'localhost', 'S1', 'red');"
              "PRAGMA user_version = 1;");
    EXPECT_THAT(Query("SELECT DriveKey FROM PD"), ElementsAre("S1"));
    EXPECT_THAT(Tables(), ElementsAre("Adapter", "PD", "PD_version1", "Plugin"));
    EXPECT_THAT(Query("SELECT Colour FROM PD_version1"), ElementsAre("red"));
    EXPECT_THAT(Query("PRAGMA user_version"), ElementsAre("2"));
}

TEST_F(Migration, AFormerTableWithRowsOfOneKeyStays)
{
    WriteFile("CREATE TABLE PD (ID INTEGER PRIMARY KEY, HostName TEXT, DriveKey TEXT);"
              "INSERT INTO PD VALUES (1, 'localhost', 'S1'), (2, 'localhost', 'S1');");
    EXPECT_THAT(Query("SELECT ID FROM PD"), ElementsAre("2"));
    EXPECT_THAT(Query("SELECT ID FROM PD_version0"), ElementsAre("1", "2"));
}

TEST_F(Migration, ATableKeptEarlierIsNotOverwritten)
{
    for (const char* colour : {"red", "green"}) {
        WriteFile("DROP TABLE IF EXISTS PD; CREATE TABLE PD (ID INTEGER PRIMARY KEY, Colour TEXT);"
                  "INSERT INTO PD VALUES (1, '" +
                  std::string(colour) + "'); PRAGMA user_version = 0;");
        Query("SELECT 1");
        Reopen();
    }
    EXPECT_THAT(Query("SELECT Colour FROM PD_version0; SELECT Colour FROM PD_version0_2"),
                ElementsAre("red", "green"));
}

TEST_F(Migration, TheFormerTriggersEndAndThePresentOnesWork)
{
    Query("PRAGMA user_version = 0");
    DatabaseORM::insert(*m_Storage, makeAdapter(1, "S1"));
    DatabaseORM::insert(*m_Storage, makeDrive("S1"));
    Reopen();
    EXPECT_THAT(Query("SELECT DriveKey FROM PD; SELECT SerialNumber FROM Adapter"), ElementsAre("S1", "S1"));
    EXPECT_THAT(Query("SELECT name FROM sqlite_master WHERE type = 'trigger' ORDER BY name"),
                ElementsAre("DeleteDriveOfAdapter", "IgnoreUnchangedAdapter", "IgnoreUnchangedPlugin"));
    DatabaseORM::remove(*m_Storage, condition_t(&Adapter::m_AdapterNumber, 1));
    EXPECT_THAT(Query("SELECT DriveKey FROM PD"), IsEmpty());
}

TEST_F(Migration, TheFormerTriggersGoWithATableThatStays)
{
    DatabaseORM::insert(*m_Storage, makeAdapter(1, "S1"));
    Query("ALTER TABLE Adapter ADD COLUMN Colour TEXT; PRAGMA user_version = 1");
    Reopen();
    EXPECT_THAT(Query("SELECT SerialNumber FROM Adapter"), ElementsAre("S1"));
    EXPECT_THAT(
        Query("SELECT COUNT(*) FROM sqlite_master WHERE type = 'trigger' AND tbl_name = 'Adapter_version1'"),
        ElementsAre("0"));
}

TEST_F(Migration, AFormerTableOfAStrangeVersionStays)
{
    WriteFile("CREATE TABLE PD (ID INTEGER PRIMARY KEY, DriveKey TEXT, Colour TEXT);"
              "INSERT INTO PD VALUES (1, 'S1', 'red'); PRAGMA user_version = -5;");
    EXPECT_THAT(Query("SELECT DriveKey FROM PD"), ElementsAre("S1"));
    EXPECT_THAT(Query("SELECT Colour FROM \"PD_version-5\""), ElementsAre("red"));
}

TEST_F(Migration, ThatCannotBeDoneChangesNothing)
{
    WriteFile("CREATE TABLE Plugin (ID INTEGER PRIMARY KEY, Name TEXT); INSERT INTO Plugin VALUES (1, 'x');"
              "CREATE TABLE Other (X); CREATE VIEW PD AS SELECT 1;");
    EXPECT_NE(databaseError([&] { Query("SELECT 1"); }), "");
    WriteFile("DROP VIEW PD;");
    EXPECT_THAT(Query("SELECT Name FROM Plugin"), ElementsAre("x"));
}

TEST_F(Migration, TheTablesOfANewerReleaseAreRefused)
{
    Query("PRAGMA user_version = 3; PRAGMA journal_mode = DELETE");
    Reopen();
    for (int round = 0; round < 2; ++round)
        EXPECT_THAT(databaseError([&] { Query("SELECT 1"); }),
                    HasSubstr("a newer release made its tables (version 3, this release knows 2)"));
    WriteFile("CREATE TABLE Untouched (Version, Mode);"
              "INSERT INTO Untouched SELECT * FROM pragma_user_version, pragma_journal_mode;"
              "PRAGMA user_version = 2;");
    EXPECT_THAT(Query("SELECT * FROM Untouched"), ElementsAre("3", "delete"));
}

namespace {

/** Additions that an administrator may have made to a file of the previous release. */
constexpr const char* ADDITIONS =
    "CREATE TABLE Log (Text);"
    "CREATE VIEW Serials AS SELECT A.SerialNumber AS Serial FROM Adapter A JOIN PD ON DriveKey = Serial;"
    "CREATE TRIGGER RenameBySerial INSTEAD OF UPDATE ON Serials BEGIN"
    " UPDATE PD SET Name = NEW.Serial WHERE DriveKey = OLD.Serial; END;"
    "CREATE TRIGGER CountDrives AFTER INSERT ON Log BEGIN"
    " UPDATE Log SET Text = Text || (SELECT COUNT(*) FROM PD); END;"
    "CREATE UNIQUE INDEX \"By \"\"Name\"\"\" ON PD (Name, DriveKey) /* mine */;"
    "CREATE TRIGGER LogDrives AFTER INSERT ON PD BEGIN"
    " INSERT INTO Log VALUES (NEW.DriveKey || ' of '); END;";

constexpr const char* NAMES_OF_ADDITIONS =
    "SELECT type || ' ' || name || ' ' || tbl_name FROM sqlite_master WHERE type <> 'table' AND sql IS NOT "
    "NULL"
    " AND name NOT LIKE 'IgnoreUnchanged%' AND name <> 'DeleteDriveOfAdapter' ORDER BY name";

} // namespace

TEST_F(Migration, WhatTheAdministratorAddedStaysAndWorks)
{
    DatabaseORM::insert(*m_Storage, makeAdapter(1, "S1"));
    DatabaseORM::insert(*m_Storage, makeDrive("S1"));
    Query(ADDITIONS);
    const Values before = Query(NAMES_OF_ADDITIONS);
    ASSERT_EQ(before.size(), 5U);
    Query("PRAGMA user_version = 1");
    Reopen();
    EXPECT_THAT(Query("SELECT Serial FROM Serials"), ElementsAre("S1"));
    EXPECT_EQ(Query(NAMES_OF_ADDITIONS), before);
    EXPECT_THAT(Tables(), ElementsAre("Adapter", "Log", "PD", "Plugin"));
    EXPECT_THAT(Query("SELECT Text FROM Log"), IsEmpty()) << "the migration itself is none of theirs";
    DatabaseORM::insert(*m_Storage, makeDrive("S2"));
    EXPECT_THAT(Query("SELECT Text FROM Log"), ElementsAre("S2 of 2"));
    Query("UPDATE Serials SET Serial = 'renamed'");
    EXPECT_THAT(Query("SELECT Name FROM PD WHERE DriveKey = 'S1'"), ElementsAre("renamed"));
    // From here on, texts that mention a table mean the new table of that name.
    Query("ALTER TABLE Log RENAME TO Log2");
    DatabaseORM::insert(*m_Storage, makeDrive("S3"));
    EXPECT_THAT(Query("SELECT COUNT(*) FROM Log2"), ElementsAre("2"));
}

TEST_F(Migration, AViewThatIsBrokenStopsNothing)
{
    Query("CREATE VIEW Broken AS SELECT Colour FROM PD JOIN Missing; PRAGMA user_version = 1");
    Reopen();
    EXPECT_EQ(DatabaseORM::insert(*m_Storage, makeDrive("S1")), 1);
    EXPECT_THAT(Query(NAMES_OF_ADDITIONS), ElementsAre("view Broken Broken"));
}

TEST_F(Migration, WhatDoesNotFitTheNewColumnsStaysOnTheFormerTable)
{
    WriteFile("CREATE TABLE PD (ID INTEGER PRIMARY KEY, HostName TEXT, DriveKey TEXT, Colour TEXT);"
              "INSERT INTO PD VALUES (1, 'localhost', 'S1', 'red');"
              "CREATE INDEX ByColour ON PD (Colour); CREATE INDEX ByKey ON PD (DriveKey);"
              "CREATE TRIGGER Paint AFTER UPDATE ON PD WHEN NEW.Colour = 'blue' BEGIN SELECT 1; END;");
    EXPECT_EQ(DatabaseORM::insert(*m_Storage, makeDrive("S2")), 2);
    Query("UPDATE PD SET Name = 'x'");
    EXPECT_THAT(Query(NAMES_OF_ADDITIONS),
                ElementsAre("index ByColour PD_version0", "index ByKey PD", "trigger Paint PD_version0"));
}
