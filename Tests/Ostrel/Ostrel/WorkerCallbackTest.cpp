#include "Support/TryElsewhere.h"
#include "WorkerFixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <new>
#include <stdexcept>
#include <string>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using TestSupport::CFakeDrive;
using TestSupport::CGate;
using TestSupport::tryElsewhere;
using TLX::Threading::WaitResult::Taken;
using TLX::Threading::WaitResult::TimedOut;

/** When the worker calls the host, and what the host may do in the call. */
class WorkerCallback : public TestSupport::CWorkerFixture
{};

} // namespace

TEST_F(WorkerCallback, APrivateEventCallsTheHostAtOnceWithoutALock)
{
    m_Drives.Add(CFakeDrive(0));
    CGate reached;
    CGate go;
    m_OnCall = [&] {
        reached.Set();
        go.Pass();
    };
    Start();
    CountEnumerations();
    m_Api.m_PrivateEvent.Set();
    reached.Pass();
    EXPECT_EQ(tryElsewhere(m_Api.m_DataLock), Taken);
    EXPECT_EQ(tryElsewhere(m_Api.m_EventsLock), Taken);
    go.Set();
    EXPECT_EQ(AwaitWorker(), INTERVAL);
    EXPECT_EQ(m_Calls, 1);
    EXPECT_EQ(m_Enumerations, 0);
}

TEST_F(WorkerCallback, CallsTheHostAfterAnUpdateWithTheDataLockAlone)
{
    m_Drives.Add(CFakeDrive(0));
    CGate reached;
    CGate go;
    m_OnCall = [&] {
        reached.Set();
        go.Pass();
    };
    Start();
    m_Api.m_ForceWorker.Set(); // the adapter's name changes
    reached.Pass();
    EXPECT_EQ(tryElsewhere(m_Api.m_DataLock), TimedOut);
    EXPECT_EQ(tryElsewhere(m_Api.m_EventsLock), Taken);
    go.Set();
    EXPECT_EQ(AwaitWorker(), INTERVAL);
    EXPECT_EQ(tryElsewhere(m_Api.m_DataLock), Taken);
}

TEST_F(WorkerCallback, CallsNobodyWhenNothingHasChanged)
{
    m_Drives.Add(CFakeDrive(0));
    Start();
    Settle();
    Force();
    EXPECT_EQ(m_Calls, 0);
    EXPECT_THAT(CollectEvents(), IsEmpty());
}

TEST_F(WorkerCallback, CallsTheHostForAChangeWithoutAnEvent)
{
    m_Drives.Add(CFakeDrive(0));
    Start();
    Settle();
    m_Drives.Change(0, [](CFakeDrive& drive) { drive.Kelvin(310); });
    Force();
    EXPECT_EQ(m_Calls, 1);
    EXPECT_THAT(CollectEvents(), IsEmpty());
}

TEST_F(WorkerCallback, CallsTheHostAsLongAsEventsArePending)
{
    m_Drives.Add(CFakeDrive(0));
    Start();
    Settle();
    m_Drives.Add(CFakeDrive(1));
    Force();
    Force();
    EXPECT_EQ(m_Calls, 2);
    EXPECT_THAT(CollectEvents(), ElementsAre(11093U));
    Force();
    EXPECT_EQ(m_Calls, 2);
    EXPECT_THAT(CollectEvents(), IsEmpty());
}

TEST_F(WorkerCallback, CallsTheHostInASkippedCycleWhenEventsArePending)
{
    m_Drives.Add(CFakeDrive(0));
    Start();
    Settle();
    m_Drives.Add(CFakeDrive(1));
    Force();
    EXPECT_EQ(m_Calls, 1);
    m_Drives.Change(0, [](CFakeDrive& drive) { drive.m_ControllerStatuses = {5}; });
    Force();
    EXPECT_EQ(m_Calls, 2);
    EXPECT_THAT(CollectEvents(), ElementsAre(11093U));
}

TEST_F(WorkerCallback, CallsTheHostAfterACycleThatThrewWhenEventsArePending)
{
    m_Drives.Add(CFakeDrive(0));
    Start();
    Settle();
    m_Drives.Add(CFakeDrive(1));
    Force();
    m_Drives.OnQuery([](const std::string&) { throw std::bad_alloc(); });
    Force();
    EXPECT_EQ(m_Calls, 2);
}

TEST_F(WorkerCallback, NeedsNoCallback)
{
    m_Drives.Add(CFakeDrive(0));
    m_Api.m_HostCallback = nullptr;
    Start();
    m_Drives.Add(CFakeDrive(1));
    Force();
    m_Api.m_PrivateEvent.Set();
    EXPECT_EQ(AwaitWorker(), INTERVAL);
    EXPECT_THAT(CollectEvents(), ElementsAre(11093U));
}

TEST_F(WorkerCallback, SurvivesACallbackThatThrows)
{
    m_Drives.Add(CFakeDrive(0));
    m_OnCall = [] { throw std::runtime_error("the host's own"); };
    Start();
    m_Drives.Add(CFakeDrive(1));
    Force();
    EXPECT_EQ(tryElsewhere(m_Api.m_DataLock), Taken);
    m_Api.m_PrivateEvent.Set();
    EXPECT_EQ(AwaitWorker(), INTERVAL);
    Force();
    EXPECT_EQ(m_Calls, 3);
    EXPECT_THAT(CollectEvents(), ElementsAre(11093U));
}

TEST_F(WorkerCallback, GoesOnWhenACallbackThatBlockedReturns)
{
    m_Drives.Add(CFakeDrive(0));
    CGate reached;
    CGate go;
    m_OnCall = [&] {
        reached.Set();
        go.Pass();
    };
    Start();
    m_Api.m_ForceWorker.Set();
    reached.Pass();
    m_Clock.Advance(1'000'000);
    go.Set();
    EXPECT_EQ(AwaitWorker(), INTERVAL);
    m_Drives.Add(CFakeDrive(1));
    m_Clock.Advance(INTERVAL);
    EXPECT_EQ(AwaitWorker(), INTERVAL);
    EXPECT_EQ(m_Calls, 2);
}
