#include "ChildProcess.h"
#include "Database/DatabaseFixture.h"
#include "Support/VirtualClock.h"

#include <csignal>
#include <numeric>

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

using namespace TestSupport;
using testing::ElementsAre;
using testing::HasSubstr;

namespace {

/** The position of a log's locks in the file "-shm", by the file format of SQLite. */
constexpr off_t READ_LOCKS = 123;
constexpr off_t READ_LOCK_COUNT = 5;

/** A process that stopped in the middle of its work on the log and holds all its locks. */
class CFrozenHolder
{
public:
    explicit CFrozenHolder(const std::filesystem::path& database)
        : m_Process([&database](const CPipe& output, const CPipe&) {
              const int file = open((database.string() + "-shm").c_str(), O_RDWR | O_CLOEXEC);
              struct flock lock
              {};
              lock.l_type = F_WRLCK;
              lock.l_whence = SEEK_SET;
              lock.l_start = READ_LOCKS;
              lock.l_len = READ_LOCK_COUNT;
              output.Write(fcntl(file, F_SETLK, &lock) == 0 ? "locked" : "refused");
              close(STDOUT_FILENO);
              raise(SIGSTOP);
          })
    {
        siginfo_t state{};
        waitid(P_ALL, 0, &state, WSTOPPED);
        char byte = 0;
        EXPECT_TRUE(m_Process.Output().ReadByte(byte));
        EXPECT_EQ(byte, 'l');
    }

    /** This kills the process, and the system releases its locks. */
    void Kill() { m_Process.Kill(); }

private:
    CChildProcess m_Process;
};

class FrozenHolder : public DatabaseFixture
{
protected:
    std::string InsertError(const std::string& serial)
    {
        return databaseError([&] { DatabaseORM::insert(*m_Storage, makeDrive(serial)); });
    }

    std::uint64_t Waited() const
    {
        const auto sleeps = m_Clock.Sleeps();
        return std::accumulate(sleeps.begin(), sleeps.end(), std::uint64_t{0});
    }

    CVirtualClock m_Clock;
};

} // namespace

TEST_F(FrozenHolder, OfTheLogsLocksCostsAQuarterOfASecondOnce)
{
    DatabaseORM::insert(*m_Storage, makeDrive("S1"));
    CFrozenHolder holder(File());
    EXPECT_THAT(InsertError("S2"), HasSubstr("locking protocol"));
    EXPECT_EQ(Waited(), 250U);
    for (int number = 0; number < 20; ++number)
        EXPECT_THAT(InsertError("S2"), HasSubstr("locking protocol"));
    EXPECT_THAT(databaseError([&] { Query("SELECT COUNT(*) FROM PD"); }), HasSubstr("locking protocol"));
    EXPECT_EQ(Waited(), 250U);
    m_Clock.Advance(5000);
    InsertError("S2");
    EXPECT_EQ(Waited(), 500U);
    holder.Kill();
    EXPECT_EQ(DatabaseORM::insert(*m_Storage, makeDrive("S2")), 2);
    EXPECT_THAT(Query("SELECT DriveKey FROM PD ORDER BY ID"), ElementsAre("S1", "S2"));
}
