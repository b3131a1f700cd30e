#include "WorkerFixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <stdexcept>
#include <string>
#include <vector>

namespace {

using testing::ElementsAre;
using testing::ElementsAreArray;
using TestSupport::CFakeDrive;
using TestSupport::CTraceCapture;
using TestSupport::workersLines;

class WorkerTrace : public TestSupport::CWorkerFixture
{};

const std::vector<std::string> LOCKS_TAKEN = {
    "8 Before m_DataLock.Wait(INFINITE)", "8 After m_DataLock.Wait(INFINITE)",
    "8 Before m_EventsLock.Wait(INFINITE)", "8 After m_EventsLock.Wait(INFINITE)"};
const std::vector<std::string> RELEASED = {
    "8 Before m_EventsLock.Release ()", "8 After m_EventsLock.Release ()", "8 Before m_DataLock.Release ()",
    "8 After m_DataLock.Release ()", "2 Worker() before restart interval"};

std::vector<std::string> cycleLines(const std::string& reason, const std::vector<std::string>& inside)
{
    std::vector<std::string> lines = {reason};
    for (const auto* part : {&LOCKS_TAKEN, &inside, &RELEASED})
        lines.insert(lines.end(), part->begin(), part->end());
    return lines;
}

} // namespace

TEST_F(WorkerTrace, TracesACycleWithoutAChange)
{
    m_Drives.Add(CFakeDrive(0));
    Initialize();
    {
        const CTraceCapture capture(~0U);
        StartWorker();
        EXPECT_EQ(AwaitWorker(), FIRST_WAIT);
        EXPECT_THAT(
            workersLines(capture),
            ElementsAre("2 ENTER Worker()", "16 Worker() nothing announces drives, only polling finds them"));
    }
    Settle();
    const CTraceCapture capture(~0U);
    m_Clock.Advance(INTERVAL);
    AwaitWorker();
    EXPECT_THAT(workersLines(capture),
                ElementsAreArray(cycleLines(
                    "4 Worker() timeout event received",
                    {"16 Before ScanSystem()", "16 After ScanSystem() ret = 0", "16 Before UpdateSystem()",
                     "2 ENTER UpdateSystem for 1 adapter, 1 physicalDrives",
                     "2 LEAVE UpdateSystem ret = 20000", "16 After UpdateSystem() ret = 20000"})));
}

TEST_F(WorkerTrace, TracesAForcedCycleWithAnEvent)
{
    m_Drives.Add(CFakeDrive(0));
    Start();
    Settle();
    m_Drives.Add(CFakeDrive(1));
    const CTraceCapture capture(~0U);
    Force();
    EXPECT_THAT(workersLines(capture),
                ElementsAreArray(cycleLines(
                    "4 Worker() m_ForceWorker event received, force scan",
                    {"16 Before ScanSystem()", "16 After ScanSystem() ret = 0", "16 Before UpdateSystem()",
                     "2 ENTER UpdateSystem for 2 adapter, 2 physicalDrives",
                     "8 Before m_EventsLock.Wait (sg)", "8 After m_EventsLock.Wait (sg)",
                     "2 LEAVE UpdateSystem ret = 0", "16 After UpdateSystem() ret = 0"})));
}

TEST_F(WorkerTrace, TracesASkippedCycle)
{
    m_Drives.Add(CFakeDrive(0));
    Start();
    m_Drives.Change(0, [](CFakeDrive& drive) { drive.m_ControllerStatuses = {5}; });
    const CTraceCapture capture(~0U);
    Force();
    EXPECT_THAT(workersLines(capture),
                ElementsAreArray(cycleLines("4 Worker() m_ForceWorker event received, force scan",
                                            {"8 Worker() Update skipped"})));
}

TEST_F(WorkerTrace, TracesAPrivateEvent)
{
    m_Drives.Add(CFakeDrive(0));
    Start();
    const CTraceCapture capture(~0U);
    m_Api.m_PrivateEvent.Set();
    AwaitWorker();
    EXPECT_THAT(workersLines(capture), ElementsAre("4 Worker() m_PrivateEvent event received",
                                                   "2 Worker() before restart interval"));
}

TEST_F(WorkerTrace, ShowsLockLinesAndSkippedUpdatesAtMask8)
{
    m_Drives.Add(CFakeDrive(0));
    Start();
    m_Drives.Change(0, [](CFakeDrive& drive) { drive.m_ControllerStatuses = {5}; });
    const CTraceCapture capture(8);
    Force();
    EXPECT_THAT(capture.Texts(),
                ElementsAre("Before m_DataLock.Wait(INFINITE)", "After m_DataLock.Wait(INFINITE)",
                            "Before m_EventsLock.Wait(INFINITE)", "After m_EventsLock.Wait(INFINITE)",
                            "Worker() Update skipped", "Before m_EventsLock.Release ()",
                            "After m_EventsLock.Release ()", "Before m_DataLock.Release ()",
                            "After m_DataLock.Release ()"));
}

TEST_F(WorkerTrace, TellsWhatACycleThrewAndThatTheEnumerationEnded)
{
    m_Drives.Add(CFakeDrive(0));
    Start();
    m_Drives.OnQuery([](const std::string& query) {
        if (query == "enumerate")
            throw std::runtime_error("the bus is gone");
    });
    const CTraceCapture capture(2);
    Force();
    EXPECT_THAT(capture.Texts(),
                ElementsAre("ENTER NVMeDevices::scan()", "LEAVE NVMeDevices::scan() -> ret 0",
                            "Worker() a cycle threw: the bus is gone", "Worker() before restart interval"));
    EXPECT_THAT(workersLines(capture), ElementsAre("2 Worker() a cycle threw: the bus is gone",
                                                   "2 Worker() before restart interval"));
}

TEST_F(WorkerTrace, TellsThatACycleThrewWhatIsNoException)
{
    m_Drives.Add(CFakeDrive(0));
    Start();
    m_Drives.OnQuery([](const std::string& query) {
        if (query.starts_with("controller"))
            throw 7;
    });
    const CTraceCapture capture(2);
    Force();
    EXPECT_THAT(workersLines(capture), ElementsAre("2 Worker() a cycle threw something unknown",
                                                   "2 Worker() before restart interval"));
}

TEST_F(WorkerTrace, TellsWhatTheHostsCallbackThrew)
{
    m_Drives.Add(CFakeDrive(0));
    m_OnCall = [] { throw std::runtime_error("not now"); };
    Start();
    const CTraceCapture capture(2);
    m_Api.m_PrivateEvent.Set();
    AwaitWorker();
    EXPECT_THAT(workersLines(capture), ElementsAre("2 Worker() the host's callback threw: not now",
                                                   "2 Worker() before restart interval"));
}

TEST_F(WorkerTrace, NamesTheWorkerAsTheFunctionOfItsLines)
{
    m_Drives.Add(CFakeDrive(0));
    Start();
    const CTraceCapture capture(4 | 8);
    Force();
    for (const TestSupport::CCapturedLine& line : capture.Lines()) {
        EXPECT_EQ(line.m_SourceUnit, "Ostrel/Src/Ostrel") << line.m_Text;
        // The update publishes the events that the cycle makes.
        const bool isUpdates = line.m_Text.ends_with("m_EventsLock.Wait (sg)");
        EXPECT_EQ(line.m_Function, std::string("NAMESPACE_Ostrel::IPLUGINAPI_IMPL::") +
                                       (isUpdates ? "UpdateSystem" : "Worker"))
            << line.m_Text;
    }
    EXPECT_FALSE(capture.Lines().empty());
}
