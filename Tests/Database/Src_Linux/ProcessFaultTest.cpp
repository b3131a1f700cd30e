#include "ChildProcess.h"
#include "Database/DatabaseFixture.h"

using namespace TestSupport;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

using std::filesystem::perms;

/** A database that another user or process disturbs. */
class ProcessFault : public DatabaseFixture
{
protected:
    std::string InsertErrorOfAnOrdinaryUser()
    {
        return runUnprivileged(
            [this] { return databaseError([this] { DatabaseORM::insert(*m_Storage, makeDrive("S1")); }); });
    }
};

constexpr perms READ_ONLY_FOLDER = perms::owner_read | perms::owner_exec | perms::group_read |
                                   perms::group_exec | perms::others_read | perms::others_exec;
constexpr perms READ_ONLY_FILE = perms::owner_read | perms::group_read | perms::others_read;

} // namespace

TEST_F(ProcessFault, AReadOnlyFolder)
{
    std::filesystem::permissions(Folder(), READ_ONLY_FOLDER);
    EXPECT_THAT(InsertErrorOfAnOrdinaryUser(),
                HasSubstr("unable to open database file (no file can be made in its folder)"));
    std::filesystem::permissions(Folder(), perms::owner_all);
}

TEST_F(ProcessFault, AReadOnlyFolderWithADatabase)
{
    Query("SELECT 1");
    Reopen();
    std::filesystem::permissions(Folder(), READ_ONLY_FOLDER);
    EXPECT_THAT(InsertErrorOfAnOrdinaryUser(), HasSubstr("attempt to write a readonly database"));
    std::filesystem::permissions(Folder(), perms::owner_all);
}

TEST_F(ProcessFault, AReadOnlyFile)
{
    Query("SELECT 1");
    Reopen();
    std::filesystem::permissions(Folder(), perms::all);
    std::filesystem::permissions(File(), READ_ONLY_FILE);
    EXPECT_THAT(InsertErrorOfAnOrdinaryUser(), HasSubstr("attempt to write a readonly database"));
}

TEST_F(ProcessFault, AReadOnlyFolderIntoWhichTheLogDoesNotGo)
{
    Query("PRAGMA journal_mode = DELETE");
    Reopen();
    std::filesystem::permissions(Folder(), READ_ONLY_FOLDER);
    std::filesystem::permissions(File(), READ_ONLY_FILE | perms::others_write);
    EXPECT_THAT(InsertErrorOfAnOrdinaryUser(),
                HasSubstr("attempt to write a readonly database (no file can be made in its folder)"));
    std::filesystem::permissions(Folder(), perms::owner_all);
}

TEST_F(ProcessFault, AProcessKilledInTheMiddleOfInsertsLeavesASoundDatabase)
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
            // The kill interrupts the round after the last byte read at some point.
            char byte = 0;
            for (int seen = 0; seen <= round % 10; ++seen)
                ASSERT_TRUE(child.Output().ReadByte(byte));
        }
        ASSERT_THAT(Query("PRAGMA integrity_check"), ElementsAre("ok"));
        ASSERT_NE(Query("SELECT COUNT(*) FROM PD").front(), "0");
        Reopen();
    }
}
