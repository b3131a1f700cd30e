#include "Support/SilentBackend.h"

#include <TLX/Clock.h>
#include <TLXX/ThreadedSource.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <condition_variable>
#include <map>
#include <mutex>
#include <set>
#include <stdexcept>
#include <thread>

namespace {

using testing::IsEmpty;
using TLXX::CDriveAddress;
using TLXX::CDriveAnswer;
using TLXX::CDriveCommand;
using TLXX::EQuery;

constexpr CDriveCommand CONTROLLER{EQuery::IdentifyController, 0};
constexpr CDriveCommand NAMESPACE{EQuery::IdentifyNamespace, 0};
constexpr CDriveCommand HEALTH{EQuery::SmartHealthLog, 0};

/** Enough for the slowest machine; no test waits that long when the code is right. */
constexpr std::uint64_t PATIENCE = 60'000;

/** Drives that answer at once, unless the test holds them back. */
class CGatedDrives : public TestSupport::CSilentBackend
{
public:
    std::uint32_t IdentifyController(const std::string& path,
                                     TLXX::NVME_IDENTIFY_CONTROLLER& controller) override
    {
        controller.VID = 0x1234;
        return Pass(path);
    }
    std::uint32_t IdentifyNamespace(const std::string& path, TLXX::NVME_IDENTIFY_NAMESPACE& block) override
    {
        block.NSZE = 99;
        return Pass(path);
    }
    std::uint32_t SmartHealthLog(const std::string& path,
                                 TLXX::NVME_SMART_HEALTH_INFORMATION_LOG& log) override
    {
        log.AvailableSpare = 77;
        return Pass(path);
    }
    std::uint32_t VendorLogPage(const std::string& path, std::uint8_t logIdentifier,
                                TLXX::VendorLogPage& page) override
    {
        page[0] = logIdentifier;
        return Pass(path);
    }
    std::string Instance(const std::string& path) override
    {
        const std::scoped_lock guard(m_Lock);
        const auto found = m_Instances.find(path);
        return found == m_Instances.end() ? path : found->second;
    }

    void Hold(const std::string& path)
    {
        const std::scoped_lock guard(m_Lock);
        m_Held.insert(path);
    }
    void LetGo(const std::string& path)
    {
        const std::scoped_lock guard(m_Lock);
        m_Held.erase(path);
        m_Changed.notify_all();
    }
    /** Holds every query back until `count` of them are there at once. */
    void HoldUntil(std::size_t count)
    {
        const std::scoped_lock guard(m_Lock);
        m_Meeting = count;
    }
    void AwaitQueries(std::size_t count)
    {
        std::unique_lock guard(m_Lock);
        m_Changed.wait(guard, [&] { return m_Queries >= count; });
    }
    void Exchange(const std::string& path, const std::string& instance)
    {
        const std::scoped_lock guard(m_Lock);
        m_Instances[path] = instance;
    }
    std::size_t Queries()
    {
        const std::scoped_lock guard(m_Lock);
        return m_Queries;
    }
    std::size_t MostAtOnce()
    {
        const std::scoped_lock guard(m_Lock);
        return m_MostAtOnce;
    }

    std::uint32_t m_Status = 0;
    bool m_Throws = false;

private:
    std::uint32_t Pass(const std::string& path)
    {
        std::unique_lock guard(m_Lock);
        ++m_Queries;
        m_MostAtOnce = std::max(m_MostAtOnce, ++m_Inside);
        m_Changed.notify_all();
        m_Changed.wait(guard, [&] { return !m_Held.contains(path) && m_Queries >= m_Meeting; });
        --m_Inside;
        if (m_Throws)
            throw std::runtime_error("descriptors ran out");
        return m_Status;
    }

    std::mutex m_Lock;
    std::condition_variable m_Changed;
    std::set<std::string> m_Held;
    std::map<std::string, std::string> m_Instances;
    std::size_t m_Queries = 0;
    std::size_t m_Inside = 0;
    std::size_t m_MostAtOnce = 0;
    std::size_t m_Meeting = 0;
};

class ThreadedSourceTest : public testing::Test
{
protected:
    static CDriveAddress drive(const std::string& path) { return {path, path}; }

    std::optional<CDriveAnswer> next() { return m_Source->Wait(TLX::Misc::monotonic() + PATIENCE); }
    std::optional<CDriveAnswer> nextAtOnce() { return m_Source->Wait(TLX::Misc::monotonic()); }

    std::shared_ptr<CGatedDrives> m_Drives = std::make_shared<CGatedDrives>();
    std::optional<TLXX::CThreadedSource> m_Source{std::in_place, m_Drives};
};

TEST_F(ThreadedSourceTest, AsksADriveForAllInOrder)
{
    m_Source->Submit(drive("a"), {CONTROLLER, {EQuery::VendorLog, 0xC5}, NAMESPACE, HEALTH});
    for (const CDriveCommand& command :
         {CONTROLLER, CDriveCommand{EQuery::VendorLog, 0xC5}, NAMESPACE, HEALTH}) {
        const auto answer = next();
        ASSERT_TRUE(answer);
        EXPECT_EQ(answer->m_Drive, drive("a"));
        EXPECT_EQ(answer->m_Command, command);
        EXPECT_EQ(answer->m_Status, 0U);
        EXPECT_EQ(answer->m_Block.size(), command.m_Query == EQuery::IdentifyController ||
                                                  command.m_Query == EQuery::IdentifyNamespace
                                              ? 4096U
                                              : 512U);
        if (command.m_Query == EQuery::VendorLog) {
            EXPECT_EQ(answer->m_Block[0], 0xC5);
        }
        if (command == HEALTH) {
            EXPECT_EQ(answer->m_Block[3], 77);
        }
    }
    EXPECT_FALSE(nextAtOnce());
}

TEST_F(ThreadedSourceTest, AFailedCommandHasItsStatusAndNoBlock)
{
    m_Drives->m_Status = 0x10006;
    m_Source->Submit(drive("a"), {CONTROLLER});
    const auto answer = next();
    ASSERT_TRUE(answer);
    EXPECT_EQ(answer->m_Status, 0x10006U);
    EXPECT_THAT(answer->m_Block, IsEmpty());
}

TEST_F(ThreadedSourceTest, WhatAQueryThrowsIsAnAnswer)
{
    m_Drives->m_Throws = true;
    m_Source->Submit(drive("a"), {CONTROLLER, HEALTH});
    for (int i = 0; i < 2; ++i) {
        const auto answer = next();
        ASSERT_TRUE(answer);
        EXPECT_EQ(answer->m_Status, TLXX::STATUS_NO_RESOURCES);
        EXPECT_THAT(answer->m_Block, IsEmpty());
    }
}

TEST_F(ThreadedSourceTest, AnotherDriveAtThePathIsRefused)
{
    m_Drives->Exchange("a", "another");
    m_Source->Submit(drive("a"), {CONTROLLER});
    const auto answer = next();
    ASSERT_TRUE(answer);
    EXPECT_EQ(answer->m_Status, TLXX::STATUS_NO_DEVICE);
    EXPECT_THAT(answer->m_Block, IsEmpty());
}

TEST_F(ThreadedSourceTest, ADriveThatIsExchangedWhileItAnswersIsRefused)
{
    m_Drives->Hold("a");
    m_Source->Submit(drive("a"), {CONTROLLER});
    m_Drives->AwaitQueries(1);
    m_Drives->Exchange("a", "another");
    m_Drives->LetGo("a");
    EXPECT_EQ(next().value().m_Status, TLXX::STATUS_NO_DEVICE);
}

TEST_F(ThreadedSourceTest, AHeldDriveDelaysNoOther)
{
    m_Drives->Hold("a");
    m_Source->Submit(drive("a"), {CONTROLLER});
    m_Drives->AwaitQueries(1);
    for (int i = 0; i < 20; ++i)
        m_Source->Submit(drive("drive " + std::to_string(i)), {CONTROLLER});
    for (int i = 0; i < 20; ++i)
        EXPECT_NE(next().value().m_Drive, drive("a"));
    EXPECT_FALSE(nextAtOnce());

    m_Drives->LetGo("a");
    EXPECT_EQ(next().value().m_Drive, drive("a"));
}

TEST_F(ThreadedSourceTest, DrivesThatKeepItWaitingAreAskedSideBySide)
{
    constexpr std::size_t count = 64;
    m_Drives->HoldUntil(count); // so none answers before all are asked
    for (std::size_t i = 0; i < count; ++i)
        m_Source->Submit(drive("drive " + std::to_string(i)), {CONTROLLER});
    std::set<std::string> answered;
    for (std::size_t i = 0; i < count; ++i)
        answered.insert(next().value().m_Drive.m_Path);
    EXPECT_EQ(answered.size(), count);
    EXPECT_EQ(m_Drives->MostAtOnce(), count);
}

TEST_F(ThreadedSourceTest, OneDriveNeedsOneThread)
{
    m_Source->Submit(drive("a"), {CONTROLLER, NAMESPACE, HEALTH});
    for (int i = 0; i < 3; ++i)
        EXPECT_TRUE(next());
    EXPECT_EQ(m_Drives->MostAtOnce(), 1U);
}

TEST_F(ThreadedSourceTest, GivesUpAtTheInstant)
{
    m_Drives->Hold("a");
    m_Source->Submit(drive("a"), {CONTROLLER});
    EXPECT_FALSE(m_Source->Wait(TLX::Misc::monotonic() + 20));
    m_Drives->LetGo("a");
    EXPECT_TRUE(next()) << "late, but not lost";
}

TEST_F(ThreadedSourceTest, WakingEndsTheWait)
{
    m_Drives->Hold("a");
    m_Source->Submit(drive("a"), {CONTROLLER});
    std::thread waker([&] {
        m_Drives->AwaitQueries(1);
        m_Source->Wake();
    });
    EXPECT_FALSE(next());
    waker.join();

    m_Source->Wake();
    EXPECT_FALSE(nextAtOnce());
    EXPECT_FALSE(next()) << "a wait that need not wait does not use it up";
    m_Drives->LetGo("a");
    EXPECT_TRUE(next());
}

TEST_F(ThreadedSourceTest, LeavesAHeldThreadBehind)
{
    m_Drives->Hold("a");
    m_Source->Submit(drive("a"), {CONTROLLER, HEALTH});
    m_Drives->AwaitQueries(1);
    m_Source->Submit(drive("b"), {CONTROLLER});
    m_Source.reset();

    m_Drives->LetGo("a");
    while (m_Drives.use_count() != 1) // the thread has a share until it ends
        std::this_thread::yield();
    EXPECT_EQ(m_Drives->Queries(), 1U) << "the source is gone";
}

} // namespace
