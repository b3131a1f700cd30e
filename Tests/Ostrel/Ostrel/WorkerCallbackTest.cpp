#include "Support/TryElsewhere.h"
#include "WorkerFixture.h"

#include <PI/EventCode.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <functional>
#include <new>
#include <ostream>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using TestSupport::CFakeDrive;
using TestSupport::CFakeDrives;
using TestSupport::CGate;
using TestSupport::tryElsewhere;
using TLX::Threading::WaitResult::Taken;
using TLX::Threading::WaitResult::TimedOut;

/** When the worker calls the host, and what the host may do in the call. */
class WorkerCallback : public TestSupport::CWorkerFixture
{
protected:
    WorkerCallback() { m_Drives.Add(CFakeDrive(0)); }

    /** The host's next calls last until `m_Go`, and tell by `m_Reached` that they have begun. */
    void HoldTheHostInItsCall()
    {
        m_OnCall = [this] {
            m_Reached.Set();
            m_Go.Pass();
        };
    }

    CGate m_Reached;
    CGate m_Go;
};

using Change = std::function<void(CFakeDrives&)>;

void nothing(CFakeDrives&) {}

void heat(CFakeDrives& drives)
{
    drives.Change(0, [](CFakeDrive& drive) { drive.Kelvin(310); });
}

void plug(CFakeDrives& drives)
{
    drives.Add(CFakeDrive(1));
}

void refuseOnce(CFakeDrives& drives)
{
    drives.Change(0, [](CFakeDrive& drive) { drive.m_ControllerStatuses = {5}; });
}

void throwInEachQuery(CFakeDrives& drives)
{
    drives.OnQuery([](const std::string&) { throw std::bad_alloc(); });
}

/** What happens before a cycle, and what follows from that. */
struct CCycle
{
    std::string m_Name;
    Change m_Before;
    int m_Calls; ///< of the host
    std::vector<std::uint32_t> m_Events;
};

std::ostream& operator<<(std::ostream& output, const CCycle& cycle)
{
    return output << cycle.m_Name;
}

class WorkerCallbackAfter : public WorkerCallback, public testing::WithParamInterface<CCycle>
{};

const CCycle CYCLES[] = {
    {"NoChange", nothing, 0, {}},
    {"AChangeWithoutAnEvent", heat, 1, {}},
    {"AChangeWithAnEvent", plug, 1, {PI::EVENT_ADAPTER_ADDED}},
};
INSTANTIATE_TEST_SUITE_P(Cycle, WorkerCallbackAfter, testing::ValuesIn(CYCLES),
                         [](const auto& instance) { return instance.param.m_Name; });

/** The second cycle while an event of the first is pending. */
class WorkerCallbackWhilePending : public WorkerCallback, public testing::WithParamInterface<CCycle>
{};

const CCycle FURTHER_CYCLES[] = {
    {"WithoutAChange", nothing, 1, {PI::EVENT_ADAPTER_ADDED}},
    {"ThatIsSkipped", refuseOnce, 1, {PI::EVENT_ADAPTER_ADDED}},
    {"ThatThrows", throwInEachQuery, 1, {PI::EVENT_ADAPTER_ADDED}},
};
INSTANTIATE_TEST_SUITE_P(Cycle, WorkerCallbackWhilePending, testing::ValuesIn(FURTHER_CYCLES),
                         [](const auto& instance) { return instance.param.m_Name; });

} // namespace

TEST_P(WorkerCallbackAfter, CallsTheHostWhenSomethingHasChanged)
{
    Start();
    Settle();
    GetParam().m_Before(m_Drives);
    Force();
    EXPECT_EQ(m_Calls, GetParam().m_Calls);
    EXPECT_EQ(CollectEvents(), GetParam().m_Events);
}

TEST_P(WorkerCallbackWhilePending, CallsTheHostUntilTheEventsAreCollected)
{
    Start();
    Settle();
    plug(m_Drives);
    Force();
    m_Calls = 0;
    GetParam().m_Before(m_Drives);
    Force();
    EXPECT_EQ(m_Calls, GetParam().m_Calls);
    EXPECT_EQ(CollectEvents(), GetParam().m_Events);
    m_Drives.OnQuery(nullptr);
    m_Calls = 0;
    Force();
    EXPECT_EQ(m_Calls, 0);
    EXPECT_THAT(CollectEvents(), IsEmpty());
}

TEST_F(WorkerCallback, APrivateEventCallsTheHostAtOnceWithoutALock)
{
    HoldTheHostInItsCall();
    Start();
    CountEnumerations();
    m_Api.m_PrivateEvent.Set();
    m_Reached.Pass();
    EXPECT_EQ(tryElsewhere(m_Api.m_DataLock), Taken);
    EXPECT_EQ(tryElsewhere(m_Api.m_EventsLock), Taken);
    m_Go.Set();
    EXPECT_EQ(AwaitWorker(), INTERVAL);
    EXPECT_EQ(m_Calls, 1);
    EXPECT_EQ(m_Enumerations, 0);
}

TEST_F(WorkerCallback, CallsTheHostAfterAnUpdateWithTheDataLockAlone)
{
    HoldTheHostInItsCall();
    Start();
    m_Api.m_ForceWorker.Set(); // the adapter's name changes
    m_Reached.Pass();
    EXPECT_EQ(tryElsewhere(m_Api.m_DataLock), TimedOut);
    EXPECT_EQ(tryElsewhere(m_Api.m_EventsLock), Taken);
    m_Go.Set();
    EXPECT_EQ(AwaitWorker(), INTERVAL);
    EXPECT_EQ(tryElsewhere(m_Api.m_DataLock), Taken);
}

TEST_F(WorkerCallback, NeedsNoCallback)
{
    m_Api.m_HostCallback = nullptr;
    Start();
    plug(m_Drives);
    Force();
    m_Api.m_PrivateEvent.Set();
    EXPECT_EQ(AwaitWorker(), INTERVAL);
    EXPECT_THAT(CollectEvents(), ElementsAre(PI::EVENT_ADAPTER_ADDED));
}

TEST_F(WorkerCallback, SurvivesACallbackThatThrows)
{
    m_OnCall = [] { throw std::runtime_error("the host's own"); };
    Start();
    plug(m_Drives);
    Force();
    EXPECT_EQ(tryElsewhere(m_Api.m_DataLock), Taken);
    m_Api.m_PrivateEvent.Set();
    EXPECT_EQ(AwaitWorker(), INTERVAL);
    Force();
    EXPECT_EQ(m_Calls, 3);
    EXPECT_THAT(CollectEvents(), ElementsAre(PI::EVENT_ADAPTER_ADDED));
}

TEST_F(WorkerCallback, GoesOnWhenACallbackThatBlockedReturns)
{
    HoldTheHostInItsCall();
    Start();
    m_Api.m_ForceWorker.Set();
    m_Reached.Pass();
    m_Clock.Advance(1'000'000);
    m_Go.Set();
    EXPECT_EQ(AwaitWorker(), INTERVAL);
    plug(m_Drives);
    m_Clock.Advance(INTERVAL);
    EXPECT_EQ(AwaitWorker(), INTERVAL);
    EXPECT_EQ(m_Calls, 2);
}
