#include "DatabaseFixture.h"

using namespace TestSupport;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

class Fault : public DatabaseFixture
{
protected:
    void WriteFile(const std::string& content) { m_Folder.Write("Ostrel.db", content); }

    std::string InsertError(const std::string& serial)
    {
        try {
            DatabaseORM::insert(*m_Storage, makeDrive(serial));
        } catch (const DBEXCEPTION::DatabaseException& exception) {
            return exception.what();
        }
        return "no failure";
    }
};

} // namespace

TEST_F(Fault, AFileThatIsNoDatabaseIsReportedAndLeftAlone)
{
    const std::string content(4096, 'x');
    WriteFile(content);
    for (int round = 0; round < 2; ++round)
        EXPECT_EQ(InsertError("S1"),
                  "Storage query exception thrown! Cannot read ID from database! (database '" +
                      File().string() + "': file is not a database)");
    EXPECT_EQ(m_Folder.Read("Ostrel.db"), content);
}

TEST_F(Fault, ARepairedFileWorksWithoutARestart)
{
    WriteFile(std::string(4096, 'x'));
    EXPECT_THAT(InsertError("S1"), HasSubstr("file is not a database"));
    std::filesystem::remove(File());
    EXPECT_EQ(DatabaseORM::insert(*m_Storage, makeDrive("S1")), 1);
}

TEST_F(Fault, AnEmptyFileBecomesADatabase)
{
    WriteFile("");
    EXPECT_EQ(DatabaseORM::insert(*m_Storage, makeDrive("S1")), 1);
}

TEST_F(Fault, AFolderInTheFilesPlace)
{
    std::filesystem::create_directory(File());
    EXPECT_THAT(InsertError("S1"), testing::HasSubstr("unable to open database file (it is a folder)"));
}

TEST_F(Fault, AMissingFolder)
{
    setDatabaseFile(Folder() / "missing" / "Ostrel.db");
    m_Storage = getDatabasePointer();
    EXPECT_THAT(InsertError("S1"), HasSubstr("unable to open database file"));
}

TEST_F(Fault, AFullDiskFailsInsertsAndKeepsTheRows)
{
    DatabaseORM::insert(*m_Storage, makeDrive("first"));
    Query("PRAGMA max_page_count = 1");
    std::size_t stored = 1;
    std::string error = "no failure";
    for (; stored < 10000 && error == "no failure"; ++stored)
        error = InsertError(std::to_string(stored));
    EXPECT_EQ(error, "Storage query exception thrown! (database '" + File().string() +
                         "': database or disk is full)");
    EXPECT_THAT(Query("SELECT COUNT(*) FROM PD"), ElementsAre(std::to_string(stored - 1)));
    Reopen();
    EXPECT_THAT(Query("SELECT COUNT(*) FROM PD; PRAGMA integrity_check"),
                ElementsAre(std::to_string(stored - 1), "ok"));
}
