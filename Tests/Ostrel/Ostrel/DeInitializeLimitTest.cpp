#include "DeInitializeFixture.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

namespace {

using testing::ElementsAre;
using TestSupport::CFakeDrive;
using TestSupport::CGate;
using TestSupport::CTraceCapture;
using TestSupport::DeInitialize;
using TestSupport::WAITING;
using TLX::Threading::WaitResult::Taken;

} // namespace

// The worker ends when the limit counted from the request has passed, but not the one counted from the pause.
TEST_F(DeInitialize, TheFirstPauseIsNoPartOfTheLimit)
{
    m_Drives.Add(CFakeDrive(0));
    Start();
    CGate reached;
    CGate go;
    HoldWorkerInAQuery(reached, go);
    int sleeps = 0;
    m_Clock.OnSleep([&] {
        ++sleeps;
        if (sleeps == 2)
            m_Clock.Advance(24'950);
        if (sleeps == 3) {
            go.Set();
            EXPECT_EQ(m_Api.m_WorkerThread->Wait(), Taken);
        }
    });
    const CTraceCapture capture(~0U);
    EXPECT_EQ(Request(), PI::ERR_SUCCESS);
    EXPECT_THAT(OwnLines(capture), ElementsAre("2 ENTER DeInitialize", "16 " + WAITING, "16 " + WAITING,
                                               "2 LEAVE DeInitialize"));
    EXPECT_EQ(sleeps, 4);
}
