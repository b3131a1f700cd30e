#include "Base/Failure.h"
#include "Journal/Reader.h"
#include "Journal/Store.h"
#include "Support/FaultyVfs.h"
#include "Support/TemporaryFolder.h"

#include <gmock/gmock.h>

#include <exception>
#include <filesystem>
#include <functional>
#include <string>
#include <thread>
#include <vector>

#include <sys/fsuid.h>
#include <unistd.h>

namespace {

using namespace Host::Journal;
using std::filesystem::perms;
using testing::HasSubstr;

constexpr uid_t NOBODY = 65534;
constexpr perms READABLE = perms::owner_read | perms::owner_exec | perms::group_read | perms::group_exec |
                           perms::others_read | perms::others_exec;
constexpr perms EXECUTABLE = perms::owner_exec | perms::group_exec | perms::others_exec;
constexpr perms WRITABLE = READABLE | perms::owner_write;

/** The folder of a service, and a user who may read it only. */
class JournalAccessTest : public testing::Test
{
protected:
    JournalAccessTest()
    {
        allow(WRITABLE);
        // The files beside it take over its permissions.
        (void)store();
        std::filesystem::permissions(m_File, perms::owner_write | (READABLE & ~EXECUTABLE));
    }

    Store store() const
    {
        return Store(m_File, [](const std::string&) {});
    }

    static Outcome moved(const std::string& text)
    {
        Outcome outcome;
        outcome.m_Entries.emplace_back();
        outcome.m_Entries.back().m_Text = text;
        return outcome;
    }

    /** Runs on a thread that the system treats like that user. Only root needs to be another one. */
    void asReader(const std::function<void()>& action)
    {
        allow(READABLE);
        std::thread thread([&] {
            if (geteuid() == 0)
                setfsuid(NOBODY);
            EXPECT_NO_THROW(action());
        });
        thread.join();
        allow(WRITABLE);
    }

    void allow(perms permissions) const { std::filesystem::permissions(m_Folder.Path(), permissions); }

    const TestSupport::CTemporaryFolder m_Folder;
    const std::filesystem::path m_File = serviceFile(m_Folder.Path());
    Reader m_Reader{m_File};
};

TEST_F(JournalAccessTest, AnyUserWhoMayReadTheFileReadsItWithAndWithoutTheService)
{
    store().commit(moved("one"));
    asReader([&] { EXPECT_EQ(m_Reader.lastNumber(), 1U) << "the service has ended"; });
    Store running = store();
    running.commit(moved("two"));
    asReader([&] { EXPECT_EQ(m_Reader.lastNumber(), 2U) << "the service runs"; });
    running.commit(moved("three"));
    asReader([&] { EXPECT_EQ(m_Reader.lastNumber(), 3U) << "and tells more"; });
}

TEST_F(JournalAccessTest, WhatADeadServiceLeftIsRead)
{
    TestSupport::CFaultyVfs vfs;
    {
        Store dying = store();
        dying.commit(moved("one"));
        vfs.KillAfter(0, TestSupport::CFaultyVfs::Kill::Process);
        EXPECT_THROW(dying.commit(moved("two")), Host::Failure);
    }
    vfs.Revive();
    ASSERT_TRUE(std::filesystem::exists(m_Folder.Path() / "Service.db-wal"));
    // It must close the file before the file system goes.
    Reader reader(m_File);
    asReader([&] { EXPECT_EQ(reader.lastNumber(), 1U); });
}

TEST_F(JournalAccessTest, AFolderThatCannotBeWrittenIsNoPlaceForAJournal)
{
    const auto failureOf = [&](const std::function<void()>& action) {
        std::string message = "no failure";
        asReader([&] {
            try {
                action();
            } catch (const Host::Failure& failure) {
                message = failure.what();
                EXPECT_EQ(failure.exitCode(), Host::ExitCode::NoPermission);
            }
        });
        return message;
    };
    store().commit(moved("one"));
    EXPECT_THAT(failureOf([&] { store(); }),
                HasSubstr("cannot be opened: there is no permission to write to it."));
    std::filesystem::permissions(m_File, perms::owner_write);
    EXPECT_THAT(failureOf([&] { m_Reader.lastNumber(); }), HasSubstr("cannot be read: "));
}

/** Windows does not allow an open file to be deleted. */
TEST(DeletedJournalTest, IsMadeAgainWithTheWholeState)
{
    const TestSupport::CTemporaryFolder folder;
    const std::filesystem::path file = serviceFile(folder.Path());
    std::vector<std::string> warnings;
    const auto warn = [&](const std::string& text) { warnings.push_back(text); };
    Store store(file, warn);
    Outcome next;
    next.m_Entries.resize(2);
    next.m_State.m_Drives.resize(2);
    next.m_State.m_Drives[1].m_Key = "B";
    store.commit(next);
    const std::string identity = store.identity();
    std::filesystem::remove(file);
    next.m_Entries.resize(1);
    store.commit(next);
    EXPECT_THAT(warnings, testing::ElementsAre(HasSubstr("was moved or deleted. A new one begins.")));
    EXPECT_EQ(Reader(file).lastNumber(), 1U);
    EXPECT_EQ(store.lastNumber(), 1U);
    EXPECT_NE(store.identity(), identity);
    EXPECT_EQ(Store(file, warn).state(), next.m_State) << "all of it, although little has changed";
}

TEST(DeletedJournalTest, UnchangedDrivesAreWrittenToTheFileThatTookItsPlace)
{
    const TestSupport::CTemporaryFolder folder;
    const std::filesystem::path file = serviceFile(folder.Path());
    const std::filesystem::path other = folder.Path() / "Other.db";
    std::vector<std::string> warnings;
    const auto warn = [&](const std::string& text) { warnings.push_back(text); };
    Outcome mine;
    mine.m_State.m_Drives.resize(2);
    mine.m_State.m_Drives[1].m_Key = "MINE";
    Store store(file, warn);
    store.commit(mine);
    {
        Outcome others = mine;
        others.m_State.m_Drives[1].m_Key = "OTHER";
        Store(other, warn).commit(others);
    }
    std::filesystem::rename(other, file);
    store.commit(mine);
    EXPECT_EQ(Store(file, warn).state(), mine.m_State);
    EXPECT_EQ(warnings.size(), 1U);
}

} // namespace
