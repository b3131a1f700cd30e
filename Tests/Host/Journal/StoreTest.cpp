#include "Journal/Store.h"

#include "Base/Failure.h"
#include "Host/Journal/RandomHistory.h"
#include "Journal/Reader.h"
#include "Journal/ServiceLife.h"
#include "Support/FaultyVfs.h"
#include "Support/TemporaryFolder.h"

#include <PI/EventCode.h>

#include <gmock/gmock.h>

#include <fstream>
#include <functional>
#include <thread>

namespace {

using namespace Host::Journal;
using Host::Failure;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;
using TestSupport::CFaultyVfs;
using Operation = CFaultyVfs::Operation;

std::string messageOf(const std::function<void()>& action)
{
    try {
        action();
    } catch (const Failure& failure) {
        return failure.what();
    }
    return "no failure";
}

Entry entry(Kind kind, const std::string& text)
{
    Entry result{kind, Phase::Change, Severity::Warning, PI::EVENT_ADAPTER_ADDED, "KEY", {}, text, 5, 7};
    result.m_Drive = {"name", "/dev/nvme0n1", "vendor",       "model",
                      "S'1",  "location",     "0000:01:00.0", Host::Cli::ShownPlace::Another};
    return result;
}

Outcome outcome(std::vector<Entry> entries, std::uint64_t time)
{
    Outcome result{std::move(entries), {}};
    result.m_State.m_Time = time;
    return result;
}

class StoreTest : public testing::Test
{
protected:
    Store open()
    {
        return Store(m_File, [this](const std::string& text) { m_Warnings.push_back(text); });
    }

    std::vector<NumberedEntry> all() const { return Reader(m_File).read(0, 1000); }

    const TestSupport::CTemporaryFolder m_Folder;
    const std::filesystem::path m_File = serviceFile(m_Folder.Path());
    std::vector<std::string> m_Warnings;
};

TEST_F(StoreTest, KeepsEntriesAndStateTogether)
{
    Entry bare;
    bare.m_Text = "bare";
    const std::vector<Entry> entries = {entry(Kind::DriveAdded, "one"), bare};
    std::string identity;
    {
        Store store = open();
        EXPECT_EQ(store.lastNumber(), 0U);
        EXPECT_EQ(store.state(), State());
        identity = store.identity();
        store.commit(outcome(entries, 7));
        store.commit(outcome({entry(Kind::DriveAdded, "three")}, 8));
        EXPECT_EQ(store.lastNumber(), 3U);
        EXPECT_THAT(store.counts(), ElementsAre(std::pair("drive-added", 3U)));
    }
    const Store store = open();
    EXPECT_EQ(store.state(), outcome({}, 8).m_State);
    EXPECT_EQ(store.lastNumber(), 3U);
    EXPECT_THAT(store.counts(), ElementsAre(std::pair("drive-added", 3U)));
    EXPECT_EQ(store.identity(), identity);
    EXPECT_EQ(identity.size(), 32U);
    EXPECT_THAT(all(), ElementsAre(NumberedEntry{1, entries[0]}, NumberedEntry{2, entries[1]},
                                   NumberedEntry{3, entry(Kind::DriveAdded, "three")}));
    EXPECT_THAT(m_Warnings, IsEmpty());
}

TEST_F(StoreTest, AStateLosesRowsThatItNoLongerHas)
{
    Outcome next;
    next.m_State.m_Drives.resize(3);
    next.m_State.m_Gone.resize(2);
    next.m_State.m_Drives[2].m_Key = "C";
    open().commit(next);
    EXPECT_EQ(open().state(), next.m_State);
    next.m_State.m_Drives.erase(next.m_State.m_Drives.begin());
    next.m_State.m_Gone.clear();
    open().commit(next);
    EXPECT_EQ(open().state(), next.m_State);
}

TEST_F(StoreTest, RefusesAStateThatLacksADrive)
{
    Outcome two;
    two.m_State.m_Drives.resize(2);
    open().commit(two);
    Host::Sqlite::Connection::toWrite(m_File).run("DELETE FROM State WHERE Part = 1 AND Place = 0");
    EXPECT_EQ(open().state(), State());
    ASSERT_EQ(m_Warnings.size(), 1U);
    EXPECT_THAT(m_Warnings[0], HasSubstr("a drive is missing"));
}

TEST_F(StoreTest, AReaderSeesEntriesWhileAnotherThreadWritesThem)
{
    Store store = open();
    Reader reader(m_File);
    EXPECT_EQ(reader.lastNumber(), 0U);
    constexpr std::uint64_t count = 200;
    std::thread writer([&] {
        for (std::uint64_t i = 1; i <= count; ++i)
            store.commit(outcome({entry(Kind::Moved, std::to_string(i))}, i));
    });
    std::uint64_t seen = 0;
    while (seen < count)
        for (const NumberedEntry& each : reader.read(seen, 7)) {
            EXPECT_EQ(each.m_Number, ++seen);
            EXPECT_EQ(each.m_Entry.m_Text, std::to_string(seen));
        }
    writer.join();
    EXPECT_EQ(reader.lastNumber(), count);
    EXPECT_EQ(reader.read(197, 100).size(), 3U);
    EXPECT_THAT(reader.read(~0ULL, 1), IsEmpty());
    EXPECT_THAT(reader.read(0, 0), IsEmpty());
}

TEST_F(StoreTest, AReaderLeavesOutWhatWasBeforeATime)
{
    {
        Store store = open();
        // The clock was set back and forth.
        for (const std::uint64_t time : {50, 10, 20, 50, 19, 21}) {
            Entry told = entry(Kind::Moved, "");
            told.m_End = time;
            store.commit(outcome({told}, time));
        }
    }
    Reader reader(m_File);
    const auto numbers = [&](std::uint64_t after, std::size_t limit, std::uint64_t since) {
        std::vector<std::uint64_t> read;
        for (const NumberedEntry& each : reader.read(after, limit, since))
            read.push_back(each.m_Number);
        return read;
    };
    EXPECT_THAT(numbers(0, 10, 20), ElementsAre(1, 3, 4, 6));
    EXPECT_THAT(numbers(0, 2, 20), ElementsAre(1, 3)) << "the limit is one of entries that are there";
    EXPECT_THAT(numbers(3, 2, 20), ElementsAre(4, 6));
    EXPECT_THAT(numbers(0, 10, 51), IsEmpty());
    EXPECT_THAT(numbers(0, 10, ~0ULL), IsEmpty());
    EXPECT_THAT(numbers(0, 10, 0).size(), 6U);
}

TEST_F(StoreTest, AReaderNeedsNoService)
{
    Reader reader(m_File);
    EXPECT_THAT(messageOf([&] { reader.lastNumber(); }),
                HasSubstr(" yet. The service writes it: ostrel serve"));
    open().commit(outcome({entry(Kind::Moved, "x")}, 1));
    EXPECT_EQ(reader.lastNumber(), 1U);
    EXPECT_FALSE(std::filesystem::exists(m_Folder.Path() / "Service.db-wal")) << "reading makes no file";
    open().commit(outcome({entry(Kind::Moved, "y")}, 2));
    EXPECT_EQ(reader.lastNumber(), 2U) << "the file has changed since";
    Store store = open();
    store.commit(outcome({entry(Kind::Moved, "z")}, 3));
    EXPECT_EQ(reader.lastNumber(), 3U) << "the service runs now";
}

TEST_F(StoreTest, ANewerReleasesFileIsLeftAlone)
{
    open().commit(outcome({entry(Kind::Moved, "x")}, 1));
    Host::Sqlite::Connection::toWrite(m_File).run("PRAGMA user_version = 1000");
    const std::string before = m_Folder.Read("Service.db");
    EXPECT_THAT(messageOf([&] { open(); }), HasSubstr("A newer release of Ostrel wrote the journal"));
    EXPECT_THAT(messageOf([&] { Reader(m_File).lastNumber(); }), HasSubstr("A newer release"));
    EXPECT_EQ(m_Folder.Read("Service.db"), before);
    EXPECT_THAT(m_Warnings, IsEmpty());
}

TEST_F(StoreTest, AnotherProgramsFileIsLeftAlone)
{
    Host::Sqlite::Connection::toWrite(m_File).run("CREATE TABLE Entry (A); INSERT INTO Entry VALUES (7)");
    const std::string before = m_Folder.Read("Service.db");
    EXPECT_THAT(messageOf([&] { open(); }), HasSubstr("is no journal of Ostrel"));
    EXPECT_EQ(m_Folder.Read("Service.db"), before);
}

TEST_F(StoreTest, ADamagedFileIsKeptUnderAnotherName)
{
    const std::string garbage(5000, 'x');
    m_Folder.Write("Service.db", garbage);
    open().commit(outcome({entry(Kind::Moved, "x")}, 1));
    EXPECT_THAT(m_Warnings, ElementsAre(HasSubstr("is damaged: it is no database. It is kept as ")));
    EXPECT_EQ(m_Folder.Read("Service.db.damaged"), garbage);
    EXPECT_EQ(all().size(), 1U);

    std::string pages = m_Folder.Read("Service.db");
    pages.resize(pages.size() - 4096);
    m_Folder.Write("Service.db", pages);
    EXPECT_EQ(open().state(), State());
    EXPECT_EQ(m_Warnings.size(), 2U);
    EXPECT_EQ(m_Folder.Read("Service.db.damaged2"), pages);
}

TEST_F(StoreTest, AStateThatIsNotLegibleIsDamage)
{
    open().commit(outcome({entry(Kind::Moved, "x")}, 1));
    Host::Sqlite::Connection::toWrite(m_File).run("UPDATE State SET Text = '{'");
    EXPECT_EQ(open().state(), State());
    EXPECT_THAT(m_Warnings, ElementsAre(HasSubstr("its state is not legible")));
}

TEST_F(StoreTest, ALockedFileKeepsNothingAndLosesNothing)
{
    Store store = open();
    store.commit(outcome({entry(Kind::Moved, "x")}, 1));
    {
        Host::Sqlite::Connection other = Host::Sqlite::Connection::toWrite(m_File);
        const Host::Sqlite::Transaction lock(other);
        EXPECT_THAT(messageOf([&] { store.commit(outcome({entry(Kind::Moved, "y")}, 2)); }),
                    HasSubstr("cannot be written: another program has locked it."));
        EXPECT_EQ(store.state(), outcome({}, 1).m_State);
        EXPECT_EQ(store.lastNumber(), 1U);
        EXPECT_EQ(store.counts().at("moved"), 1U);
        EXPECT_EQ(Reader(m_File).lastNumber(), 1U) << "reading goes on";
    }
    store.commit(outcome({entry(Kind::Moved, "y")}, 2));
    EXPECT_EQ(all().back().m_Number, 2U);
}

TEST_F(StoreTest, AFullDiskKeepsNothingAndLosesNothing)
{
    CFaultyVfs vfs;
    vfs.FailFrom(Operation::Write, 0, CFaultyVfs::Failure::Full);
    EXPECT_THAT(messageOf([&] { open(); }), HasSubstr("cannot be opened: the disk is full."));
    vfs.Heal();
    {
        Store store = open();
        vfs.FailFrom(Operation::Write, 0, CFaultyVfs::Failure::Full);
        const auto commit = [&] { store.commit(outcome({entry(Kind::Moved, "x")}, 1)); };
        EXPECT_THAT(messageOf(commit), HasSubstr("cannot be written: the disk is full."));
        EXPECT_THAT(messageOf(commit), HasSubstr("cannot be written: the disk is full."));
        EXPECT_EQ(store.lastNumber(), 0U);
        vfs.Heal();
        commit();
        EXPECT_EQ(store.lastNumber(), 1U);
    }
    EXPECT_EQ(all().size(), 1U);
    EXPECT_THAT(m_Warnings, IsEmpty());
}

/** What the journal has after each look, when nothing goes wrong. */
struct Reference
{
    explicit Reference(const HostTest::History& history)
    {
        State state;
        m_States.push_back(state);
        m_Counts.push_back(0);
        for (const Host::Cli::Observation& look : history) {
            Outcome next = advance(state, look);
            for (Entry& each : next.m_Entries)
                m_Entries.push_back({m_Entries.size() + 1, std::move(each)});
            state = std::move(next.m_State);
            m_States.push_back(state);
            m_Counts.push_back(m_Entries.size());
        }
    }

    std::vector<NumberedEntry> m_Entries;
    std::vector<State> m_States; ///< after each number of looks
    std::vector<std::size_t> m_Counts;
};

class StoreFaultTest : public StoreTest, public testing::WithParamInterface<CFaultyVfs::Kill>
{
protected:
    /** Looks on from the state that the journal has. Returns after how many looks it ended. */
    std::size_t goOn()
    {
        Store store = open();
        const auto at = std::find(m_Reference.m_States.begin(), m_Reference.m_States.end(), store.state());
        EXPECT_NE(at, m_Reference.m_States.end()) << "its state is none of those after a look";
        auto looks = static_cast<std::size_t>(at - m_Reference.m_States.begin());
        if (at == m_Reference.m_States.end())
            return m_History.size();
        EXPECT_EQ(store.lastNumber(), m_Reference.m_Counts[looks]) << "entries and state are of one look";
        m_Committed = std::max(m_Committed, looks);
        for (; looks < m_History.size(); ++looks) {
            store.commit(advance(store.state(), m_History[looks]));
            m_Committed = looks + 1;
        }
        return looks;
    }

    const HostTest::History m_History = HostTest::RandomHistory(3).make(8);
    const Reference m_Reference{m_History};
    std::size_t m_Committed = 0;
};

TEST_P(StoreFaultTest, AKillAtAnyOperationLosesAndDoublesNothing)
{
    ASSERT_GE(m_Reference.m_Entries.size(), 10U);
    std::uint64_t kills = 0;
    for (bool killed = true; killed; ++kills) {
        std::filesystem::remove_all(m_Folder.Path());
        std::filesystem::create_directory(m_Folder.Path());
        m_Committed = 0;
        CFaultyVfs vfs;
        vfs.KillAfter(kills, GetParam());
        EXPECT_THAT(messageOf([&] { goOn(); }), testing::AnyOf("no failure", HasSubstr("cannot be ")));
        killed = vfs.Killed();
        vfs.Revive();
        const std::size_t committed = m_Committed;
        {
            const Store store = open();
            const auto at =
                std::find(m_Reference.m_States.begin(), m_Reference.m_States.end(), store.state());
            ASSERT_GE(at - m_Reference.m_States.begin(), static_cast<std::ptrdiff_t>(committed))
                << "what was committed is there, kill " << kills;
        }
        EXPECT_EQ(goOn(), m_History.size());
        ASSERT_EQ(all(), m_Reference.m_Entries) << "kill " << kills;
        ASSERT_THAT(m_Warnings, IsEmpty()) << "kill " << kills;
    }
    EXPECT_GT(kills, 50U) << "there are that many operations";
}

INSTANTIATE_TEST_SUITE_P(Kills, StoreFaultTest,
                         testing::Values(CFaultyVfs::Kill::Process, CFaultyVfs::Kill::ProcessTorn,
                                         CFaultyVfs::Kill::Machine, CFaultyVfs::Kill::MachineTorn));

/** Every operation of one kind fails once, at each place in turn. */
using StoreErrorTest = StoreFaultTest;

TEST_F(StoreErrorTest, AnyOperationMayFailOnce)
{
    for (const Operation operation : {Operation::Open, Operation::Write, Operation::Truncate, Operation::Sync,
                                      Operation::Delete, Operation::Lock})
        for (const CFaultyVfs::Failure failure : {CFaultyVfs::Failure::Device, CFaultyVfs::Failure::Full}) {
            std::uint64_t place = 0;
            for (bool reached = true; reached; ++place) {
                std::filesystem::remove_all(m_Folder.Path());
                std::filesystem::create_directory(m_Folder.Path());
                CFaultyVfs vfs;
                vfs.FailOnce(operation, place, failure);
                std::size_t looks = 0;
                for (int attempt = 0; attempt < 4 && looks < m_History.size(); ++attempt)
                    (void)messageOf([&] { looks = goOn(); });
                reached = vfs.Count(operation) > place;
                ASSERT_EQ(all(), m_Reference.m_Entries)
                    << "operation " << static_cast<int>(operation) << ", place " << place;
                ASSERT_THAT(m_Warnings, IsEmpty());
            }
        }
}

} // namespace
