#include "Support/TryElsewhere.h"
#include "WorkerFixture.h"

#include <PI/EventCode.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using TestSupport::CFakeDrive;
using TestSupport::CGate;
using TestSupport::CTraceCapture;
using TestSupport::tryElsewhere;
using TestSupport::workersLines;
using TLX::Threading::WaitResult::Taken;
using TLX::Threading::WaitResult::TimedOut;

class Worker : public TestSupport::CWorkerFixture
{};

} // namespace

TEST_F(Worker, WakesAfter100MillisecondsAndThenAfterEachInterval)
{
    m_Drives.Add(CFakeDrive(0));
    CountEnumerations();
    Initialize();
    EXPECT_EQ(m_Enumerations, 1);
    StartWorker();
    EXPECT_EQ(AwaitWorker(), 100U);
    EXPECT_EQ(m_Enumerations, 1);
    m_Clock.Advance(100);
    EXPECT_EQ(AwaitWorker(), 30'000U);
    EXPECT_EQ(m_Enumerations, 2);
    for (int cycle = 3; cycle < 6; ++cycle) {
        m_Clock.Advance(30'000);
        EXPECT_EQ(AwaitWorker(), 30'000U);
        EXPECT_EQ(m_Enumerations, cycle);
    }
}

TEST_F(Worker, ReadsTheIntervalAnewAtEachRestart)
{
    m_Drives.Add(CFakeDrive(0));
    Start();
    m_Api.m_PollInterval = 5;
    m_Clock.Advance(100);
    EXPECT_EQ(AwaitWorker(), 5'000U);
    m_Api.m_PollInterval = 255;
    m_Clock.Advance(5'000);
    EXPECT_EQ(AwaitWorker(), 255'000U);
    m_Api.m_PollInterval = 0xFFFFFFFF;
    m_Clock.Advance(255'000);
    EXPECT_EQ(AwaitWorker(), 0xFFFFFFFFULL * 1000);
}

TEST_F(Worker, AForcedScanPostponesTheNextTimedOneByAFullInterval)
{
    m_Drives.Add(CFakeDrive(0));
    Start();
    CountEnumerations();
    m_Clock.Advance(40);
    Force();
    EXPECT_EQ(m_Enumerations, 1);
    m_Clock.Advance(29'999);
    Force();
    EXPECT_EQ(m_Enumerations, 2);
}

TEST_F(Worker, TwoForcesBeforeACycleAreOneAndASecondDuringItIsAnother)
{
    m_Drives.Add(CFakeDrive(0));
    CGate reached;
    CGate go;
    Start();
    std::atomic<int> enumerations = 0;
    m_Drives.OnQuery([&](const std::string& query) {
        if (query == "enumerate" && ++enumerations == 1) {
            reached.Set();
            go.Pass();
        }
    });
    m_Api.m_ForceWorker.Set();
    reached.Pass();
    m_Api.m_ForceWorker.Set();
    m_Api.m_ForceWorker.Set();
    go.Set();
    EXPECT_EQ(AwaitWorker(), INTERVAL);
    EXPECT_EQ(AwaitWorker(), INTERVAL);
    EXPECT_EQ(enumerations, 2);
    Stop();
    EXPECT_EQ(enumerations, 2);
}

TEST_F(Worker, StopWhileItWaitsEndsItWithoutAnotherCycle)
{
    m_Drives.Add(CFakeDrive(0));
    Start();
    CountEnumerations();
    const CTraceCapture capture(~0U);
    m_Api.m_StopRequest.Set();
    EXPECT_EQ(m_Api.m_WorkerThread->Wait(), Taken);
    EXPECT_THAT(workersLines(capture),
                ElementsAre("4 Worker() something else perhaps m_StopRequest", "2 LEAVE Worker()"));
    EXPECT_EQ(m_Enumerations, 0);
    EXPECT_EQ(m_Calls, 0);
}

TEST_F(Worker, StopDuringAScanEndsItAfterThatCycle)
{
    m_Drives.Add(CFakeDrive(0));
    CGate reached;
    CGate go;
    Start();
    HoldWorkerInAQuery(reached, go);
    m_Api.m_StopRequest.Set();
    EXPECT_EQ(m_Api.m_WorkerThread->Wait(0), TimedOut);
    go.Set();
    EXPECT_EQ(m_Api.m_WorkerThread->Wait(), Taken);
    EXPECT_EQ(m_Calls, 1) << "the cycle's change was told";
}

TEST_F(Worker, SkipsACycleInWhichADriveDoesNotIdentify)
{
    m_Drives.Add(CFakeDrive(0));
    m_Drives.Add(CFakeDrive(1));
    m_Drives.Add(CFakeDrive(2));
    Start();
    Settle();
    m_Drives.Change(0, [](CFakeDrive& drive) { drive.Kelvin(310); });
    m_Drives.Change(1, [](CFakeDrive& drive) { drive.m_ControllerStatuses = {5}; });
    const std::size_t before = m_Drives.Queries().size();
    const std::uint64_t count = m_Api.m_Plugin.m_UpdateCount;
    Force();
    const auto queries = m_Drives.Queries();
    EXPECT_THAT(
        std::vector<std::string>(queries.begin() + static_cast<std::ptrdiff_t>(before), queries.end()),
        ElementsAre("controller /dev/nvme0n1", "namespace /dev/nvme0n1", "health /dev/nvme0n1",
                    "controller /dev/nvme1n1"));
    EXPECT_EQ(m_Calls, 0);
    EXPECT_EQ(m_Api.m_Adapters.size(), 3U);
    EXPECT_EQ(m_Api.m_Adapters.back().m_Temperature, 25.0F);
    EXPECT_EQ(m_Api.m_Plugin.m_UpdateCount, count + 1);

    Force();
    EXPECT_EQ(m_Calls, 1);
    EXPECT_EQ(m_Api.m_Adapters.back().m_Temperature, 37.0F);
}

TEST_F(Worker, SurvivesACycleThatThrows)
{
    m_Drives.Add(CFakeDrive(0));
    Start();
    Settle();
    for (const std::string culprit : {"enumerate", "namespace /dev/nvme0n1"}) {
        m_Drives.OnQuery([&](const std::string& query) {
            if (query == culprit)
                throw std::runtime_error("bus reset");
        });
        Force();
        EXPECT_EQ(m_Calls, 0);
        EXPECT_EQ(tryElsewhere(m_Api.m_DataLock), Taken);
        EXPECT_EQ(tryElsewhere(m_Api.m_EventsLock), Taken);
        EXPECT_EQ(m_Api.m_Adapters.size(), 1U);
    }
    m_Drives.OnQuery([](const std::string&) { throw 7; });
    Force();
    m_Drives.OnQuery({});
    m_Drives.Add(CFakeDrive(1));
    Force();
    EXPECT_EQ(m_Calls, 1);
    EXPECT_THAT(CollectEvents(), ElementsAre(PI::EVENT_ADAPTER_ADDED));
}

TEST_F(Worker, LinksAdaptersAndPluginAndCountsItsUpdates)
{
    m_Drives.Add(CFakeDrive(0));
    m_Drives.Add(CFakeDrive(1));
    Start();
    const std::uint64_t plugin = m_Api.m_Plugin.m_ID;
    Force();
    ASSERT_EQ(m_Api.m_Adapters.size(), 2U);
    EXPECT_EQ(m_Api.m_Adapters[0].m_SerialNumber, "SN1");
    EXPECT_THAT(m_Api.m_Plugin.m_Children, ElementsAre(m_Api.m_Adapters[0].m_ID, m_Api.m_Adapters[1].m_ID));
    EXPECT_THAT(m_Api.m_Adapters[0].m_Parents, ElementsAre(plugin));
    EXPECT_THAT(m_Api.m_Adapters[1].m_Parents, ElementsAre(plugin));
    EXPECT_EQ(m_Api.m_Adapters[0].m_UpdateCount, 1U);
    EXPECT_EQ(m_Api.m_Plugin.m_UpdateCount, 1U);

    m_Drives.Remove("/dev/nvme1n1");
    Force();
    ASSERT_EQ(m_Api.m_Adapters.size(), 1U);
    EXPECT_THAT(m_Api.m_Plugin.m_Children, ElementsAre(m_Api.m_Adapters[0].m_ID));
    EXPECT_EQ(m_Api.m_Adapters[0].m_UpdateCount, 2U);
    EXPECT_EQ(m_Api.m_Plugin.m_UpdateCount, 3U); // the removal, and the cycle
}

TEST_F(Worker, AMachineThatLosesItsLastDriveIsEmpty)
{
    m_Drives.Add(CFakeDrive(0));
    Start();
    Settle();
    m_Drives.Remove("/dev/nvme0n1");
    Force();
    EXPECT_THAT(m_Api.m_Adapters, IsEmpty());
    EXPECT_THAT(m_Api.m_PhysicalDrives, IsEmpty());
    EXPECT_THAT(m_Api.m_Plugin.m_Children, IsEmpty());
    EXPECT_THAT(CollectEvents(), ElementsAre(PI::EVENT_ADAPTER_REMOVED));
}

TEST_F(Worker, SettingTheIntervalWakesItAndIsInForceAtOnce)
{
    m_Drives.Add(CFakeDrive(0));
    Start();
    Settle();
    PI::CProperty property(PI::PROP_POLL_INTERVAL, true);
    property.SetValue(60, 2, 255, 1);
    PI::CRequestData data = property;
    EXPECT_EQ(m_Api.Request(PI::REQUEST_SET_PROPERTY, m_Api.m_Plugin.m_ID, data), PI::ERR_SUCCESS);
    EXPECT_EQ(AwaitWorker(), 60'000U);
    EXPECT_EQ(m_Calls, 1);
}

// Runs only the body, on an object whose locks were never made ready.

TEST_F(Worker, DoesNothingInACycleWithoutTheDataLock)
{
    m_Drives.Add(CFakeDrive(0));
    CountEnumerations();
    ASSERT_EQ(m_Api.m_ForceWorker.Init(true, false), Taken);
    ASSERT_EQ(m_Api.m_StopRequest.Init(true, true), Taken);
    ASSERT_EQ(m_Api.m_PrivateEvent.Init(false, false), Taken);
    const CTraceCapture capture(~0U);
    m_Api.Worker();
    EXPECT_THAT(capture.Texts(),
                ElementsAre("ENTER Worker()", "Worker() nothing announces drives, only polling finds them",
                            "Worker() m_ForceWorker event received, force scan",
                            "Before m_DataLock.Wait(INFINITE)", "After m_DataLock.Wait(INFINITE)",
                            "Worker() before restart interval",
                            "Worker() something else perhaps m_StopRequest", "LEAVE Worker()"));
    EXPECT_EQ(m_Enumerations, 0);
    EXPECT_EQ(m_Calls, 0);
}

TEST_F(Worker, GivesTheDataLockBackInACycleWithoutTheEventsLock)
{
    m_Drives.Add(CFakeDrive(0));
    CountEnumerations();
    ASSERT_EQ(m_Api.m_DataLock.Init(), Taken);
    ASSERT_EQ(m_Api.m_ForceWorker.Init(true, false), Taken);
    ASSERT_EQ(m_Api.m_StopRequest.Init(true, true), Taken);
    ASSERT_EQ(m_Api.m_PrivateEvent.Init(false, false), Taken);
    const CTraceCapture capture(8);
    m_Api.Worker();
    EXPECT_THAT(capture.Texts(),
                ElementsAre("Before m_DataLock.Wait(INFINITE)", "After m_DataLock.Wait(INFINITE)",
                            "Before m_EventsLock.Wait(INFINITE)", "After m_EventsLock.Wait(INFINITE)",
                            "Before m_DataLock.Release ()", "After m_DataLock.Release ()"));
    EXPECT_EQ(tryElsewhere(m_Api.m_DataLock), Taken);
    EXPECT_EQ(m_Enumerations, 0);
    EXPECT_EQ(m_Calls, 0);
    EXPECT_EQ(m_Api.m_Plugin.m_UpdateCount, 0U);
}

TEST_F(Worker, EndsAtOnceWithoutItsEvents)
{
    const CTraceCapture capture(~0U);
    m_Api.Worker();
    EXPECT_THAT(capture.Texts(),
                ElementsAre("ENTER Worker()", "Worker() nothing announces drives, only polling finds them",
                            "Worker() something else perhaps m_StopRequest", "LEAVE Worker()"));
}
