#include "WorkerFixture.h"

#include <PI/EventCode.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::ElementsAre;
using TestSupport::CFakeDrive;
using TestSupport::CTraceCapture;
using TestSupport::workersLines;

/** Drives that are announced when they come or go. */
class WorkerAnnouncement : public TestSupport::CWorkerFixture
{
protected:
    static constexpr std::uint64_t DELAY = 200; // from an announcement to the scan

    WorkerAnnouncement()
    {
        m_Drives.Add(CFakeDrive(0));
        m_Drives.AnnounceBy(m_Announcer);
    }

    // Before the object goes, the worker has to.
    ~WorkerAnnouncement() override
    {
        if (m_Api.m_WorkerThread)
            Stop();
    }

    /** A first scan, and then an announcement that has been heard. */
    void AnnounceAfterTheFirstScan()
    {
        Start();
        Settle();
        CountEnumerations();
        m_Announcer.Announce();
        EXPECT_EQ(m_Clock.AwaitWait(++m_Waits), DELAY);
    }

    TestSupport::CAnnouncer m_Announcer;
};

} // namespace

TEST_F(WorkerAnnouncement, WakesTheWorkerLongBeforeItsInterval)
{
    AnnounceAfterTheFirstScan();
    m_Drives.Add(CFakeDrive(1));
    m_Clock.Advance(DELAY - 1);
    EXPECT_EQ(m_Enumerations, 0);
    m_Clock.Advance(1);
    EXPECT_EQ(AwaitWorker(), INTERVAL);
    EXPECT_EQ(m_Enumerations, 1);
    EXPECT_THAT(CollectEvents(), ElementsAre(PI::EVENT_ADAPTER_ADDED));
}

TEST_F(WorkerAnnouncement, IsAskedForWhileTheWorkerRuns)
{
    Initialize();
    EXPECT_FALSE(m_Announcer.HasSubscriber());
    StartWorker();
    EXPECT_EQ(AwaitWorker(), FIRST_WAIT);
    EXPECT_TRUE(m_Announcer.HasSubscriber());
    Stop();
    EXPECT_FALSE(m_Announcer.HasSubscriber());
}

TEST_F(WorkerAnnouncement, DoesNotHoldUpTheEndWhileItsScanIsDue)
{
    AnnounceAfterTheFirstScan();
    Stop();
    EXPECT_FALSE(m_Announcer.HasSubscriber());
    EXPECT_EQ(m_Enumerations, 0);
}

TEST_F(WorkerAnnouncement, LeavesNoLineInTheTraceWhenItCanBeHad)
{
    Initialize();
    const CTraceCapture capture(~0U);
    StartWorker();
    EXPECT_EQ(AwaitWorker(), FIRST_WAIT);
    EXPECT_THAT(workersLines(capture), ElementsAre("2 ENTER Worker()"));
}
