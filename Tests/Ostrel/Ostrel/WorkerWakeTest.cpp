#include "WorkerFixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>

namespace {

using testing::ElementsAre;
using TestSupport::CFakeDrive;
using TestSupport::CGate;
using TestSupport::CTraceCapture;
using TLX::Threading::WaitResult::Taken;

const std::string FORCED = "Worker() m_ForceWorker event received, force scan";
const std::string PRIVATE = "Worker() m_PrivateEvent event received";
const std::string STOPPED = "Worker() something else perhaps m_StopRequest";

/** The worker's order of work when several events are set at the end of a cycle. */
class WorkerWake : public TestSupport::CWorkerFixture
{
protected:
    static constexpr std::uint32_t WAKES = 4; // the trace level

    WorkerWake()
    {
        m_Drives.Add(CFakeDrive(0));
        Start();
        Settle();
        HoldWorkerInAQuery(m_Reached, m_Go);
    }

    CGate m_Reached;
    CGate m_Go;
};

} // namespace

TEST_F(WorkerWake, AForcedScanComesBeforeAPrivateEvent)
{
    const CTraceCapture capture(WAKES);
    m_Api.m_PrivateEvent.Set();
    m_Api.m_ForceWorker.Set();
    m_Go.Set();
    for (int wait = 0; wait < 3; ++wait)
        AwaitWorker();
    EXPECT_THAT(capture.Texts(), ElementsAre(FORCED, PRIVATE));
}

TEST_F(WorkerWake, AForcedScanComesBeforeTheEnd)
{
    const CTraceCapture capture(WAKES);
    m_Api.m_StopRequest.Set();
    m_Api.m_ForceWorker.Set();
    m_Go.Set();
    EXPECT_EQ(m_Api.m_WorkerThread->Wait(), Taken);
    EXPECT_THAT(capture.Texts(), ElementsAre(FORCED, STOPPED));
}

TEST_F(WorkerWake, TheEndComesBeforeAPrivateEvent)
{
    const CTraceCapture capture(WAKES);
    m_Api.m_PrivateEvent.Set();
    m_Api.m_StopRequest.Set();
    m_Go.Set();
    EXPECT_EQ(m_Api.m_WorkerThread->Wait(), Taken);
    EXPECT_THAT(capture.Texts(), ElementsAre(STOPPED));
    EXPECT_EQ(m_Calls, 0);
}
