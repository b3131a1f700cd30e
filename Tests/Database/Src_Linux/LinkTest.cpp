#include "Database/DatabaseFixture.h"

#include <Database/Maintenance.h>

#include <unistd.h>

using namespace TestSupport;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

constexpr uid_t SOMEBODY = 4242;

/** A link in place of a database, or of a file that SQLite keeps beside it. */
class Link : public DatabaseFixture
{
protected:
    void Give(const std::filesystem::path& link, uid_t owner) const
    {
        EXPECT_EQ(lchown(link.c_str(), owner, static_cast<gid_t>(-1)), 0);
    }

    CTemporaryFolder m_Elsewhere;
};

} // namespace

TEST_F(Link, OfOnesOwnIsFollowed)
{
    std::filesystem::create_symlink(m_Elsewhere.Path() / "Real.db", File());
    DatabaseORM::insert(*m_Storage, makeDrive("S1"));
    EXPECT_TRUE(std::filesystem::exists(m_Elsewhere.Path() / "Real.db"));
    EXPECT_EQ(inspectDatabase(File()), EDatabaseTables::Present);
    Reopen();
    EXPECT_THAT(Query("SELECT DriveKey FROM PD"), ElementsAre("S1"));
}

TEST_F(Link, AboveTheFileIsFollowed)
{
    std::filesystem::create_directory_symlink(Folder(), m_Elsewhere.Path() / "folder");
    setDatabaseFile(m_Elsewhere.Path() / "folder" / "Ostrel.db");
    DatabaseORM::insert(*getDatabasePointer(), makeDrive("S1"));
    EXPECT_THAT(Query("SELECT DriveKey FROM PD"), ElementsAre("S1"));
}

TEST_F(Link, OfSomebodyElsesIsNotFollowed)
{
    if (geteuid() != 0)
        GTEST_SKIP() << "needs the superuser";
    const std::filesystem::path real = m_Elsewhere.Path() / "Real.db";
    std::filesystem::create_symlink(real, File());
    Give(File(), SOMEBODY);
    const std::string reason =
        "database '" + File().string() + "': it is a link that belongs to another user";
    EXPECT_EQ(databaseError([&] { Query("SELECT 1"); }), reason);
    EXPECT_FALSE(std::filesystem::exists(real));
    EXPECT_EQ(databaseError([&] { inspectDatabase(File()); }), reason);
    Give(File(), 0);
    EXPECT_THAT(Query("SELECT 1"), ElementsAre("1"));
}

TEST_F(Link, InThePlaceOfTheLogIsNeverFollowed)
{
    for (const char* ending : {"-wal", "-shm"}) {
        const std::filesystem::path victim = m_Elsewhere.Write("victim", "precious");
        std::filesystem::create_symlink(victim, File().string() + ending);
        try {
            DatabaseORM::insert(*m_Storage, makeDrive("S1"));
        } catch (const DBEXCEPTION::DatabaseException&) {
            // SQLite removes some links and refuses others.
        }
        EXPECT_EQ(m_Elsewhere.Read("victim"), "precious") << ending;
        Reopen();
        std::filesystem::remove(File().string() + ending);
    }
}
