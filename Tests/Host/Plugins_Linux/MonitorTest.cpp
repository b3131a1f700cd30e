#include "Plugins/Monitor.h"

#include "Drives/SimulatedFleet.h"
#include "Host/Built.h"
#include "Plugins/HostSetup.h"
#include "Support/TemporaryFolder.h"
#include "Support/VirtualClock.h"

#include <Database/Database.h>
#include <PI/EventCode.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include <unistd.h>

namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

/** Polling alone finds edits, so that the worker waits for nothing else. */
class UnannouncedFleet : public Host::SimulatedFleet
{
public:
    using SimulatedFleet::SimulatedFleet;
    std::unique_ptr<TLXX::IAnnouncements> Subscribe(std::function<void()>) override { return nullptr; }
};

/** The real plug-in with its worker, on a clock that the test moves. */
class MonitorTest : public testing::Test
{
protected:
    MonitorTest()
    {
        // Only request 3 sleeps. The test makes its first pause last until the worker has ended.
        m_Clock.OnSleep([this] {
            while (threads() > m_Threads)
                std::this_thread::yield();
        });
        m_Monitor.start();
    }

    void TearDown() override { EXPECT_THAT(m_Warnings, IsEmpty()); }

    Host::EquippedPlugin plugin()
    {
        m_Plugins.load(HostTest::Built::PLUGIN);
        return m_Plugins.initialize().at(0);
    }

    static std::ptrdiff_t threads()
    {
        return std::distance(std::filesystem::directory_iterator("/proc/self/task"), {});
    }

    std::filesystem::path writeFleet(const std::string& drives)
    {
        return m_FleetFolder.Write("fleet.json", R"({"controllers": [)" + drives + "]}");
    }

    static std::string drive(int bus, const std::string& serial, int warning = 0)
    {
        return R"({"location": "0000:0)" + std::to_string(bus) +
               R"(:00.0", "identify": {"vendorId": 1, "model": "M", "serial": ")" + serial +
               R"("}, "health": {"temperature": 30, "criticalWarning": )" + std::to_string(warning) + "}}";
    }

    /** Lets the worker poll once; the n-th poll follows the worker's n-th wait. */
    void poll()
    {
        m_Clock.Advance(m_Clock.AwaitWait(++m_Polls));
        (void)m_Clock.AwaitWait(m_Polls + 1);
    }

    std::vector<std::string> names() const
    {
        std::vector<std::string> result;
        for (const PI::CObject& object : m_Monitor.objects().objects())
            if (object.m_Type == PI::TYPE_ADAPTER)
                result.push_back(Host::textOf(object, PI::PROP_NAME));
        return result;
    }

    std::vector<std::uint32_t> collected()
    {
        std::vector<std::uint32_t> ids;
        for (const PI::CEvent& event : m_Monitor.collect())
            ids.push_back(event.m_Id);
        return ids;
    }

    /** The number of threads without a worker. A sanitizer starts its own with the first thread. */
    static std::ptrdiff_t threadsAtRest()
    {
        pid_t first = 0;
        std::thread([&] { first = gettid(); }).join();
        while (std::filesystem::exists("/proc/self/task/" + std::to_string(first)))
            std::this_thread::yield();
        return threads();
    }

    const std::ptrdiff_t m_Threads = threadsAtRest();
    TestSupport::CVirtualClock m_Clock;
    TestSupport::CTemporaryFolder m_Folder;
    TestSupport::CTemporaryFolder m_FleetFolder;
    std::size_t m_Polls = 0;
    Host::HostSetup m_Setup{{HostTest::Built::SHARE, m_Folder.Path(), true},
                            {},
                            writeFleet(drive(1, "A") + "," + drive(2, "B")),
                            [](const std::string& warning) { ADD_FAILURE() << warning; }};
    // The destructor of the setup shows the machine's drives again.
    std::shared_ptr<TLXX::IDeviceBackend> m_Former = TLXX::setDeviceBackend(
        std::make_shared<UnannouncedFleet>(m_FleetFolder.Path() / "fleet.json",
                                           [](const std::string& warning) { ADD_FAILURE() << warning; }));
    Host::PluginSet m_Plugins;
    std::vector<std::string> m_Warnings;
    Host::Monitor m_Monitor{plugin(), m_Folder.Path(),
                            [this](const std::string& warning) { m_Warnings.push_back(warning); }};
};

TEST_F(MonitorTest, HandsOutNumbersWhichNameTheAdapters)
{
    m_Monitor.refresh();
    EXPECT_THAT(names(), ElementsAre("NVMe PCI Adapter (1)", "NVMe PCI Adapter (2)"));
    EXPECT_EQ(m_Monitor.pluginObject().m_Type, PI::TYPE_PLUGIN);
}

TEST_F(MonitorTest, CollectsWhatAPollFindsAndTheStateThatItLedTo)
{
    writeFleet(drive(1, "A", 0x14));
    poll();
    EXPECT_EQ(m_Monitor.notified().Wait(), TLX::Threading::WaitResult::Taken);
    EXPECT_THAT(collected(), ElementsAre(PI::EVENT_ADAPTER_REMOVED, PI::EVENT_RELIABILITY_DEGRADED,
                                         PI::EVENT_MEMORY_BACKUP_FAILED));
    EXPECT_EQ(names().size(), 1U);
    EXPECT_THAT(collected(), IsEmpty());
}

TEST_F(MonitorTest, AnAdapterInANewPlaceGetsANumberAndKeepsIt)
{
    writeFleet(drive(1, "A") + "," + drive(2, "B") + "," + drive(7, "C"));
    poll();
    EXPECT_THAT(collected(), ElementsAre(PI::EVENT_ADAPTER_ADDED));
    EXPECT_THAT(names(), ElementsAre("", "NVMe PCI Adapter (B)", "NVMe PCI Adapter (A)"));
    m_Monitor.refresh();
    EXPECT_THAT(names(), ElementsAre("NVMe PCI Adapter (3)", "NVMe PCI Adapter (2)", "NVMe PCI Adapter (1)"));
    EXPECT_THAT(m_Folder.Read("AdapterNumbers.txt"), HasSubstr("3 0 7 0 0 localhost\n"));
    EXPECT_THAT(getDatabasePointer()->m_Access->query("SELECT Name FROM Adapter WHERE SerialNumber = 'C'"),
                ElementsAre("NVMe PCI Adapter (3)"));
}

TEST_F(MonitorTest, LosesNoEventWhenThePluginDoesNotTellItsStateAnyMore)
{
    m_Monitor.refresh();
    // With a model that is shorter than its maker's prefix, the plug-in cannot build its properties.
    writeFleet(
        drive(1, "A") + "," + drive(2, "B") +
        R"(, {"location": "0000:07:00.0", "identify": {"vendorId": 32902, "model": "INTEL", "serial": "C"}})");
    poll();
    EXPECT_THAT(collected(), ElementsAre(PI::EVENT_ADAPTER_ADDED));
    EXPECT_EQ(names().size(), 2U);
    m_Monitor.refresh();
    EXPECT_THAT(std::exchange(m_Warnings, {}),
                ElementsAre(HasSubstr(" refused request 4 (GetTopology) with 20000")));
    writeFleet(drive(1, "A"));
    poll();
    EXPECT_THAT(collected(), ElementsAre(PI::EVENT_ADAPTER_REMOVED, PI::EVENT_ADAPTER_REMOVED));
    EXPECT_EQ(names().size(), 1U);
}

TEST_F(MonitorTest, WhatTheLastPollFoundIsNotLost)
{
    writeFleet(drive(1, "A"));
    poll();
    EXPECT_EQ(m_Monitor.stop(), Host::Ending::ByItself);
    EXPECT_THAT(collected(), ElementsAre(PI::EVENT_ADAPTER_REMOVED));
}

TEST_F(MonitorTest, StopsThePluginInTheEnd)
{
    EXPECT_EQ(threads(), m_Threads + 1);
    EXPECT_EQ(m_Monitor.stop(), Host::Ending::ByItself);
    EXPECT_EQ(threads(), m_Threads);
}

} // namespace
