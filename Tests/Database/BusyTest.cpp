#include "Database/DatabaseFixture.h"
#include "Support/VirtualClock.h"

#include <sqlite3.h>

#include <filesystem>
#include <numeric>
#include <optional>
#include <string>

using namespace TestSupport;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

/** Another connection to the same file. On destruction it ends and releases its locks. */
class CStranger
{
public:
    explicit CStranger(const std::filesystem::path& file)
    {
        EXPECT_EQ(sqlite3_open(file.string().c_str(), &m_Connection), SQLITE_OK);
    }
    ~CStranger() { sqlite3_close(m_Connection); }
    CStranger(const CStranger&) = delete;
    CStranger& operator=(const CStranger&) = delete;

    void Run(const std::string& sql)
    {
        EXPECT_EQ(sqlite3_exec(m_Connection, sql.c_str(), nullptr, nullptr, nullptr), SQLITE_OK)
            << sqlite3_errmsg(m_Connection);
    }

private:
    sqlite3* m_Connection = nullptr;
};

/** Another connection holds the file's lock. The test has a clock of its own. */
class Busy : public DatabaseFixture
{
protected:
    ~Busy() override { Unlock(); }

    /** `settings` is run before the lock is taken. */
    void LockElsewhere(const std::string& settings = "")
    {
        m_Holder.emplace(File());
        m_Holder->Run(settings + "BEGIN EXCLUSIVE; CREATE TABLE IF NOT EXISTS Other (X);");
    }

    void Unlock() { m_Holder.reset(); }

    std::uint64_t Waited() const
    {
        const auto sleeps = m_Clock.Sleeps();
        return std::accumulate(sleeps.begin(), sleeps.end(), std::uint64_t{0});
    }

    std::string InsertError(const std::string& serial)
    {
        return databaseError([&] { DatabaseORM::insert(*m_Storage, makeDrive(serial)); });
    }

    CVirtualClock m_Clock;
    std::optional<CStranger> m_Holder;
};

} // namespace

TEST_F(Busy, ALockCostsAQuarterOfASecondOnce)
{
    Query("SELECT 1");
    LockElsewhere();
    EXPECT_EQ(InsertError("S1"),
              "Storage query exception thrown! (database '" + File().string() + "': database is locked)");
    EXPECT_EQ(Waited(), 250U);
    for (int number = 0; number < 1000; ++number)
        InsertError("S1");
    EXPECT_EQ(Waited(), 250U);
}

TEST_F(Busy, WaitsAgainAfterSomeSeconds)
{
    Query("SELECT 1");
    LockElsewhere();
    InsertError("S1");
    m_Clock.Advance(4000);
    InsertError("S1");
    EXPECT_EQ(Waited(), 250U);
    m_Clock.Advance(1000);
    InsertError("S1");
    EXPECT_EQ(Waited(), 500U);
}

TEST_F(Busy, WorksAgainAsSoonAsTheLockIsGone)
{
    Query("SELECT 1");
    LockElsewhere();
    InsertError("S1");
    Unlock();
    EXPECT_EQ(DatabaseORM::insert(*m_Storage, makeDrive("S1")), 1);
    EXPECT_EQ(Waited(), 250U);
}

TEST_F(Busy, ReadersGoOn)
{
    DatabaseORM::insert(*m_Storage, makeDrive("S1"));
    LockElsewhere();
    EXPECT_THAT(Query("SELECT DriveKey FROM PD"), ElementsAre("S1"));
    EXPECT_EQ(Waited(), 0U);
}

TEST_F(Busy, AFileLockedBeforeTheFirstQueryIsOpenedLater)
{
    LockElsewhere();
    EXPECT_THAT(InsertError("S1"), HasSubstr("database is locked"));
    for (int number = 0; number < 1000; ++number)
        InsertError("S1");
    EXPECT_LE(Waited(), 250U);
    Unlock();
    EXPECT_EQ(DatabaseORM::insert(*m_Storage, makeDrive("S1")), 1);
}

TEST_F(Busy, AFileThatAnotherKeepsForItselfLocksReadersToo)
{
    Query("SELECT 1");
    Reopen();
    LockElsewhere("PRAGMA locking_mode = EXCLUSIVE;");
    EXPECT_THAT(databaseError([&] { Query("SELECT COUNT(*) FROM PD"); }), HasSubstr("database is locked"));
    for (int number = 0; number < 1000; ++number)
        InsertError("S1");
    EXPECT_LE(Waited(), 250U);
    Unlock();
    EXPECT_THAT(Query("SELECT COUNT(*) FROM PD"), ElementsAre("0"));
}
