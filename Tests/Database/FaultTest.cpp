#include "ChildProcess.h"
#include "DatabaseFixture.h"

#include <fstream>
#include <iterator>

using namespace TestSupport;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

using std::filesystem::perms;

class Fault : public DatabaseFixture
{
protected:
    void WriteFile(const std::string& content) { std::ofstream(File(), std::ios::binary) << content; }

    std::string ReadFile()
    {
        std::ifstream file(File(), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }

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

constexpr perms READ_ONLY_FOLDER = perms::owner_read | perms::owner_exec | perms::group_read |
                                   perms::group_exec | perms::others_read | perms::others_exec;
constexpr perms READ_ONLY_FILE = perms::owner_read | perms::group_read | perms::others_read;

} // namespace

TEST_F(Fault, AFileThatIsNoDatabaseIsReportedAndLeftAlone)
{
    const std::string content(4096, 'x');
    WriteFile(content);
    for (int round = 0; round < 2; ++round)
        EXPECT_EQ(InsertError("S1"),
                  "Storage query exception thrown! Cannot read ID from database! (database '" +
                      File().string() + "': file is not a database)");
    EXPECT_EQ(ReadFile(), content);
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
    EXPECT_THAT(InsertError("S1"), HasSubstr("unable to open database file"));
}

TEST_F(Fault, AMissingFolder)
{
    setDatabaseFile(Folder() / "missing" / "Ostrel.db");
    m_Storage = getDatabasePointer();
    EXPECT_THAT(InsertError("S1"), HasSubstr("unable to open database file"));
}

TEST_F(Fault, AReadOnlyFolder)
{
    std::filesystem::permissions(Folder(), READ_ONLY_FOLDER);
    EXPECT_THAT(runUnprivileged([this] { return InsertError("S1"); }),
                HasSubstr("unable to open database file"));
    std::filesystem::permissions(Folder(), perms::owner_all);
}

TEST_F(Fault, AReadOnlyFolderWithADatabase)
{
    Query("SELECT 1");
    Reopen();
    std::filesystem::permissions(Folder(), READ_ONLY_FOLDER);
    EXPECT_THAT(runUnprivileged([this] { return InsertError("S1"); }),
                HasSubstr("attempt to write a readonly database"));
    std::filesystem::permissions(Folder(), perms::owner_all);
}

TEST_F(Fault, AReadOnlyFile)
{
    Query("SELECT 1");
    Reopen();
    std::filesystem::permissions(Folder(), perms::all);
    std::filesystem::permissions(File(), READ_ONLY_FILE);
    EXPECT_THAT(runUnprivileged([this] { return InsertError("S1"); }),
                HasSubstr("attempt to write a readonly database"));
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

TEST_F(Fault, AProcessKilledInTheMiddleOfInsertsLeavesASoundDatabase)
{
    for (int round = 0; round < 100; ++round) {
        {
            const CChildProcess child([this, round](const CPipe& output, const CPipe&) {
                for (int number = 0;; ++number) {
                    DatabaseORM::insert(*m_Storage, makeAdapter(number % 8, std::to_string(round)));
                    DatabaseORM::insert(*m_Storage, makeDrive(std::to_string(number % 64)));
                    output.Write("i");
                }
            });
            // The round after the last byte read is cut short somewhere.
            char byte = 0;
            for (int seen = 0; seen <= round % 10; ++seen)
                ASSERT_TRUE(child.Output().ReadByte(byte));
        }
        ASSERT_THAT(Query("PRAGMA integrity_check"), ElementsAre("ok"));
        ASSERT_NE(Query("SELECT COUNT(*) FROM PD").front(), "0");
        Reopen();
    }
}
