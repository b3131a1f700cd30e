#include "DeInitializeFixture.h"

#include <TLX/Thread.h>
#include <TLX/TraceSink.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

using testing::AllOf;
using testing::Each;
using testing::ElementsAre;
using TestSupport::CFakeDrive;
using TestSupport::CGate;
using TestSupport::CTraceCapture;
using TestSupport::DeInitialize;
using TestSupport::WAITING;
using TLX::Threading::WaitResult::Taken;

} // namespace

TEST_F(DeInitialize, WithoutAWorkerPausesTwiceAndSucceeds)
{
    m_Drives.Add(CFakeDrive(0));
    Initialize();
    const CTraceCapture capture(~0U);
    EXPECT_EQ(Request(), PI::ERR_SUCCESS);
    EXPECT_THAT(m_Clock.Sleeps(), ElementsAre(100U, 100U));
    EXPECT_THAT(OwnLines(capture), ElementsAre("2 ENTER DeInitialize", "2 LEAVE DeInitialize"));
}

TEST_F(DeInitialize, OfAnObjectThatWasNeverInitialisedSucceeds)
{
    EXPECT_EQ(Request(), PI::ERR_SUCCESS);
    EXPECT_THAT(m_Clock.Sleeps(), ElementsAre(100U, 100U));
}

TEST_F(DeInitialize, EndsAnIdleWorkerInItsFirstPause)
{
    m_Drives.Add(CFakeDrive(0));
    Start();
    const std::size_t queries = m_Drives.Queries().size();
    const CTraceCapture capture(~0U);
    Stop();
    EXPECT_THAT(m_Clock.Sleeps(), ElementsAre(100U, 100U));
    EXPECT_THAT(OwnLines(capture), ElementsAre("2 ENTER DeInitialize", "2 LEAVE DeInitialize"));
    EXPECT_EQ(m_Api.m_WorkerThread->Wait(0), Taken);
    EXPECT_EQ(m_Drives.Queries().size(), queries);
    EXPECT_EQ(m_Api.m_Adapters.size(), 1U) << "nothing is freed";
}

TEST_F(DeInitialize, AsksEveryHalfSecondForAWorkerThatIsBusy)
{
    m_Drives.Add(CFakeDrive(0));
    Start();
    CGate reached;
    CGate go;
    HoldWorkerInAQuery(reached, go);
    int sleeps = 0;
    m_Clock.OnSleep([&] {
        if (++sleeps == 4) {
            go.Set();
            EXPECT_EQ(m_Api.m_WorkerThread->Wait(), Taken);
        }
    });
    const CTraceCapture capture(~0U);
    EXPECT_EQ(Request(), PI::ERR_SUCCESS);
    EXPECT_THAT(m_Clock.Sleeps(), ElementsAre(100U, 500U, 500U, 500U, 100U));
    EXPECT_THAT(OwnLines(capture), ElementsAre("2 ENTER DeInitialize", "16 " + WAITING, "16 " + WAITING,
                                               "16 " + WAITING, "2 LEAVE DeInitialize"));
}

namespace {

/**
 * Releases the worker when the last line of the wait is written, so that it ends between the limit and the
 * force.
 */
class CLastMomentSink : public TLX::Trace::ISink
{
public:
    CLastMomentSink(CGate& go, TLX::Threading::CThread& worker) : m_Go(go), m_Worker(worker) {}

    void Write(const TLX::Trace::CLine& line) noexcept override
    {
        m_Killed = m_Killed || line.m_Text == "Kill Worker";
        if (line.m_Text == WAITING && ++m_Waiting == 51) {
            m_Go.Set();
            EXPECT_EQ(m_Worker.Wait(), Taken);
        }
    }

    CGate& m_Go;
    TLX::Threading::CThread& m_Worker;
    int m_Waiting = 0;
    bool m_Killed = false;
};

} // namespace

TEST_F(DeInitialize, DoesNotForceAWorkerThatEndsAtTheLastMoment)
{
    m_Drives.Add(CFakeDrive(0));
    Start();
    CGate reached;
    CGate go;
    m_Drives.OnQuery([&](const std::string& query) {
        if (query == "health /dev/nvme0n1") {
            reached.Set();
            go.Pass();
            throw std::runtime_error("no line of the sink's level on the way out");
        }
    });
    m_Api.m_ForceWorker.Set();
    reached.Pass();
    const auto sink = std::make_shared<CLastMomentSink>(go, *m_Api.m_WorkerThread);
    TLX::Trace::setSink(sink);
    TLX::Trace::setMask(313, 16);
    EXPECT_EQ(Request(), PI::ERR_SUCCESS);
    TLX::Trace::setMask(313, 0);
    TLX::Trace::setSink(nullptr);
    EXPECT_EQ(sink->m_Waiting, 51);
    EXPECT_FALSE(sink->m_Killed);
}
