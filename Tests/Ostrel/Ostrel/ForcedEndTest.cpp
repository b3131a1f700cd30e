#include "DeInitializeFixture.h"
#include "Support/SilentPipe.h"
#include "Support/TryElsewhere.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

// GCC's address sanitizer does not know forced unwinds and reports them as errors.
#if !defined(__SANITIZE_ADDRESS__)

namespace {

using testing::SizeIs;
using TestSupport::CFakeDrive;
using TestSupport::CGate;
using TestSupport::CTraceCapture;
using TestSupport::tryElsewhere;
using TestSupport::WAITING;
using TLX::Threading::WaitResult::Taken;
using TLX::Threading::WaitResult::TimedOut;

class ForcedEnd : public TestSupport::DeInitialize
{};

} // namespace

TEST_F(ForcedEnd, EndsAWorkerByForceThatIsStuckInADeviceQuery)
{
    const TestSupport::CSilentPipe pipe;
    m_Drives.Add(CFakeDrive(0));
    Start();
    CGate reached;
    m_Drives.OnQuery([&](const std::string& query) {
        if (query == "health /dev/nvme0n1") {
            reached.Set();
            pipe.ReadInterruptibly();
        }
    });
    m_Api.m_ForceWorker.Set();
    reached.Pass();
    EXPECT_EQ(tryElsewhere(m_Api.m_DataLock), TimedOut);

    const CTraceCapture capture(~0U);
    EXPECT_EQ(Request(), PI::ERR_SUCCESS);
    std::vector<std::uint64_t> sleeps(50, 500);
    sleeps.insert(sleeps.begin(), 100);
    sleeps.push_back(100);
    EXPECT_EQ(m_Clock.Sleeps(), sleeps);
    std::vector<std::string> lines(51, "16 " + WAITING);
    lines.insert(lines.begin(), "2 ENTER DeInitialize");
    lines.insert(lines.end(), {"16 Kill Worker", "2 LEAVE DeInitialize"});
    EXPECT_EQ(OwnLines(capture), lines);

    EXPECT_EQ(m_Api.m_WorkerThread->Wait(), Taken);
    EXPECT_EQ(tryElsewhere(m_Api.m_DataLock), Taken) << "the locks are released as the worker unwinds";
    EXPECT_EQ(tryElsewhere(m_Api.m_EventsLock), Taken);
    EXPECT_EQ(m_Calls, 0);
    PI::CRequestData objects = std::vector<PI::CObject>();
    EXPECT_EQ(m_Api.Request(PI::REQUEST_GET_TOPOLOGY, 0, objects), PI::ERR_SUCCESS);
    EXPECT_THAT(std::get<std::vector<PI::CObject>>(objects), SizeIs(3));
}

#endif
