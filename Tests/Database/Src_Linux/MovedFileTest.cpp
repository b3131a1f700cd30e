#include "Database/DatabaseFixture.h"

using namespace TestSupport;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

/** A database whose file is removed or replaced while it is open. */
class MovedFile : public DatabaseFixture
{
protected:
    MovedFile() { DatabaseORM::insert(*m_Storage, makeDrive("first")); }

    Values Drives() { return Query("SELECT DriveKey FROM PD ORDER BY DriveKey"); }

    /** Removes the file, with or without the files that SQLite keeps beside it. */
    void Delete(const std::vector<const char*>& endings) const
    {
        for (const char* ending : endings)
            EXPECT_TRUE(std::filesystem::remove(File().string() + ending)) << ending;
    }

    /** A sound, closed database in another place, with one drive. */
    std::filesystem::path OtherFile()
    {
        const std::filesystem::path path = Folder() / "Other.db";
        setDatabaseFile(path);
        DatabaseORM::insert(*getDatabasePointer(), makeDrive("other"));
        setDatabaseFile(File());
        return path;
    }
};

} // namespace

TEST_F(MovedFile, ThatWasDeletedIsMadeAnew)
{
    Delete({"", "-wal", "-shm"});
    DatabaseORM::insert(*m_Storage, makeDrive("second"));
    EXPECT_TRUE(std::filesystem::exists(File()));
    Reopen();
    EXPECT_THAT(Drives(), ElementsAre("second"));
}

TEST_F(MovedFile, ThatWasDeletedWithoutItsLogIsMadeAnew)
{
    Delete({""});
    DatabaseORM::insert(*m_Storage, makeDrive("second"));
    Reopen();
    EXPECT_THAT(Query("PRAGMA integrity_check"), ElementsAre("ok"));
    EXPECT_THAT(Drives(), ElementsAre("second"));
}

TEST_F(MovedFile, ThatWasReplacedGivesWayToTheOther)
{
    const std::filesystem::path other = OtherFile();
    Delete({"-wal", "-shm"});
    std::filesystem::rename(other, File());
    EXPECT_THAT(Drives(), ElementsAre("other"));
    DatabaseORM::insert(*m_Storage, makeDrive("second"));
    Reopen();
    EXPECT_THAT(Drives(), ElementsAre("other", "second"));
}

TEST_F(MovedFile, ThatWasReplacedTakesNothingOfItsLogToTheOther)
{
    const std::filesystem::path other = OtherFile();
    std::filesystem::rename(other, File());
    EXPECT_THAT(Drives(), ElementsAre("other"));
    EXPECT_THAT(Query("PRAGMA integrity_check"), ElementsAre("ok"));
}

TEST_F(MovedFile, LeavesAloneTheLogOfTheOther)
{
    const auto own = m_Storage;
    Delete({"", "-wal", "-shm"});
    // Another program has made the file anew, and its rows are still in the log.
    Reopen();
    DatabaseORM::insert(*m_Storage, makeDrive("second"));
    DatabaseORM::insert(*own, makeDrive("third"));
    EXPECT_THAT(Drives(), ElementsAre("second", "third"));
    EXPECT_THAT(Query("PRAGMA integrity_check"), ElementsAre("ok"));
}

TEST_F(MovedFile, IsLookedForUntilItsFolderIsBack)
{
    const std::filesystem::path elsewhere = Folder().string() + ".moved";
    std::filesystem::rename(Folder(), elsewhere);
    EXPECT_THAT(databaseError([this] { (void)Drives(); }), HasSubstr("unable to open database file"));
    std::filesystem::rename(elsewhere, Folder());
    EXPECT_THAT(Drives(), ElementsAre("first"));
}
