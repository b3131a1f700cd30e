#include "Service/Watcher.h"

#include "Facts/PropertyText.h"
#include "Host/Built.h"
#include "Journal/Reader.h"
#include "Journal/Store.h"
#include "Plugins/HostSetup.h"
#include "Support/Announcer.h"
#include "Support/FakeDrives.h"
#include "Support/TemporaryFolder.h"

#include <TLX/Clock.h>
#include <TLX/Thread.h>
#include <TLX/WaitResult.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <vector>

namespace {

using namespace Host;
using namespace Host::Service;
using Cli::Snapshot;
using testing::IsEmpty;

/** Passes everything on to the machine, and lets a test do something where controllers are looked at. */
class HookedMachine : public TLXX::IDeviceBackend
{
public:
    explicit HookedMachine(std::shared_ptr<TLXX::IDeviceBackend> machine) : m_Machine(std::move(machine)) {}

    std::vector<TLXX::CDeviceEntry> Enumerate(const TLXX::DeviceWalk& walk) override
    {
        return m_Machine->Enumerate(walk);
    }
    std::uint32_t IdentifyController(const std::string& path,
                                     TLXX::NVME_IDENTIFY_CONTROLLER& controller) override
    {
        return m_Machine->IdentifyController(path, controller);
    }
    std::uint32_t IdentifyNamespace(const std::string& path,
                                    TLXX::NVME_IDENTIFY_NAMESPACE& name_space) override
    {
        return m_Machine->IdentifyNamespace(path, name_space);
    }
    std::uint32_t SmartHealthLog(const std::string& path,
                                 TLXX::NVME_SMART_HEALTH_INFORMATION_LOG& log) override
    {
        return m_Machine->SmartHealthLog(path, log);
    }
    std::uint32_t VendorLogPage(const std::string& path, std::uint8_t logIdentifier,
                                TLXX::VendorLogPage& page) override
    {
        return m_Machine->VendorLogPage(path, logIdentifier, page);
    }
    std::string Instance(const std::string& path) override { return m_Machine->Instance(path); }
    std::optional<TLXX::CPciLocation> Location(std::uint32_t number) override
    {
        return m_Machine->Location(number);
    }
    std::vector<TLXX::CControllerState> ControllerStates() override
    {
        if (m_OnLook)
            m_OnLook();
        return m_Machine->ControllerStates();
    }
    std::string ModuleVersion(const std::string& driver) override { return m_Machine->ModuleVersion(driver); }
    std::unique_ptr<TLXX::IAnnouncements> Subscribe(std::function<void()> announce) override
    {
        return m_Machine->Subscribe(std::move(announce));
    }

    std::function<void()> m_OnLook; ///< called on the watching thread

private:
    const std::shared_ptr<TLXX::IDeviceBackend> m_Machine;
};

/** The real plug-in over scripted drives, watched on a thread of its own. */
class WatcherTest : public testing::Test
{
protected:
    WatcherTest()
    {
        m_Drives.AnnounceBy(m_Announcer);
        m_Machine = std::make_shared<HookedMachine>(TLXX::deviceBackend());
        m_Former = TLXX::setDeviceBackend(m_Machine);
    }

    ~WatcherTest() override
    {
        end();
        m_Setup.reset();
        TLXX::setDeviceBackend(m_Former);
    }

    void start()
    {
        const Warn warn = [](const std::string&) {};
        m_Setup.emplace(HostFolders{HostTest::Built::SHARE, m_Data.Path(), true, 0}, TraceOptions{},
                        std::nullopt, warn);
        m_Teller.emplace(Journal::serviceFile(m_Data.Path()), m_Board, warn);
        m_Watcher.emplace(WatcherParts{
            {{HostTest::Built::PLUGIN}, m_Data.Path(), m_Setup->drives(), warn}, m_Board, *m_Teller, [this] {
                note();
            }});
        m_Thread.emplace([this] { m_Watcher->run(); });
    }

    void end()
    {
        if (!m_Thread)
            return;
        m_Watcher->end();
        EXPECT_EQ(m_Thread->Wait(), TLX::Threading::WaitResult::Taken);
        m_Thread.reset();
    }

    void note()
    {
        const std::scoped_lock guard(m_Lock);
        m_Shown.push_back(m_Board.snapshot());
        m_News.notify_all();
    }

    /** Waits until a snapshot was shown for which this is true. */
    void await(const std::function<bool(const Snapshot&)>& isTrue)
    {
        std::unique_lock guard(m_Lock);
        const bool came = m_News.wait_for(guard, std::chrono::minutes(1), [&] {
            return std::any_of(m_Shown.begin(), m_Shown.end(),
                               [&](const auto& snapshot) { return isTrue(*snapshot); });
        });
        ASSERT_TRUE(came);
    }

    static bool isAnyWarm(const Snapshot& snapshot)
    {
        return std::any_of(snapshot.m_Drives.begin(), snapshot.m_Drives.end(),
                           [](const Cli::Drive& drive) { return drive.m_Temperature == 60; });
    }

    const TestSupport::CTemporaryFolder m_Data;
    TestSupport::CFakeDrives m_Drives;
    TestSupport::CAnnouncer m_Announcer;
    std::shared_ptr<HookedMachine> m_Machine;
    std::shared_ptr<TLXX::IDeviceBackend> m_Former;
    std::optional<HostSetup> m_Setup;
    Board m_Board{Journal::serviceFile(m_Data.Path()), false};
    std::optional<Teller> m_Teller;
    std::optional<Watcher> m_Watcher;
    std::optional<TLX::Threading::CThread> m_Thread;
    std::mutex m_Lock;
    std::condition_variable m_News;
    std::vector<std::shared_ptr<const Snapshot>> m_Shown;
};

TEST_F(WatcherTest, NeverShowsObjectsAndPagesOfDifferentRounds)
{
    constexpr std::uint16_t warm = 333; // kelvin
    m_Drives.Add(TestSupport::CFakeDrive(1));
    std::atomic<bool> isChanged = false;
    m_Machine->m_OnLook = [&] {
        // The objects were read already, and the pages were not.
        if (m_Board.snapshot()->m_Drives.empty() || isChanged.exchange(true))
            return;
        m_Drives.Change(0, [](TestSupport::CFakeDrive& drive) { drive.Kelvin(warm); });
        const std::uint64_t round = m_Setup->drives()->lastRound().m_Number;
        m_Announcer.Announce();
        while (m_Setup->drives()->lastRound().m_Number == round ||
               TLXX::lastHealthLog(m_Drives.At(0).m_DeviceName)->CompositeTemperature() != warm)
            TLX::Misc::pause(1);
    };
    start();
    await([](const Snapshot& snapshot) { return snapshot.m_Drives.size() == 1; });
    // The worker has begun to listen.
    while (!m_Announcer.HasSubscriber())
        TLX::Misc::pause(1);
    // Controllers are looked at because of this drive.
    m_Drives.Add(TestSupport::CFakeDrive(2));
    m_Announcer.Announce();
    await(isAnyWarm);
    EXPECT_TRUE(isChanged);
    const std::scoped_lock guard(m_Lock);
    for (const auto& snapshot : m_Shown)
        for (const Cli::Drive& drive : snapshot->m_Drives) {
            ASSERT_TRUE(drive.m_HealthLog && drive.m_Temperature);
            EXPECT_EQ(drive.m_HealthLog->CompositeTemperature() == warm, drive.m_Temperature == 60);
        }
}

TEST_F(WatcherTest, WaitsForTheFirstDriveAndTellsIt)
{
    start();
    await([](const Snapshot& snapshot) { return snapshot.m_Round > 0 && snapshot.m_Drives.empty(); });
    EXPECT_FALSE(m_Board.figures().m_Trouble.empty());
    m_Drives.Add(TestSupport::CFakeDrive(1));
    m_Announcer.Announce();
    await([](const Snapshot& snapshot) { return snapshot.m_Drives.size() == 1; });
    EXPECT_EQ(m_Board.figures().m_Trouble, "");
    EXPECT_GT(m_Board.figures().m_PollInterval, 0U);
    end();
    m_Teller->tellEnd();
    std::vector<Journal::Kind> kinds;
    for (const Journal::NumberedEntry& entry : m_Board.journal(0, 100))
        kinds.push_back(entry.m_Entry.m_Kind);
    EXPECT_THAT(kinds, testing::ElementsAre(Journal::Kind::ServiceStarted, Journal::Kind::DriveAdded,
                                            Journal::Kind::ServiceEnded));
}

TEST_F(WatcherTest, SetsAPropertyOnItsOwnThread)
{
    m_Drives.Add(TestSupport::CFakeDrive(1));
    start();
    await([](const Snapshot& snapshot) { return snapshot.m_Drives.size() == 1; });
    std::mutex lock;
    std::condition_variable done;
    std::vector<std::string> answers;
    const auto answer = [&](const PI::CProperty* property, const std::exception_ptr& failure) {
        const std::scoped_lock guard(lock);
        answers.push_back(failure ? "failed" : Cli::valueText(*property));
        done.notify_all();
    };
    m_Board.set("plugin", "pollinterval", "60", answer);
    m_Board.set("plugin", "pollinterval", "often", answer);
    std::unique_lock guard(lock);
    ASSERT_TRUE(done.wait_for(guard, std::chrono::minutes(1), [&] { return answers.size() == 2; }));
    EXPECT_EQ(answers[0], "60 s");
    EXPECT_EQ(answers[1], "failed");
    guard.unlock();
    await([&](const Snapshot&) { return m_Board.figures().m_PollInterval == 60'000; });
}

} // namespace
