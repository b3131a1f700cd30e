#include "Support/TraceCapture.h"
#include "WorkerFixture.h"

#include <TLX/Thread.h>
#include <TLX/TraceSink.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <stdexcept>
#include <string>
#include <vector>

#include <unistd.h>

namespace {

using testing::AllOf;
using testing::Each;
using testing::ElementsAre;
using testing::SizeIs;
using TestSupport::CFakeDrive;
using TestSupport::CGate;
using TestSupport::CTraceCapture;
using TLX::Threading::WaitResult::Taken;
using TLX::Threading::WaitResult::TimedOut;

const std::string WAITING = "Wait for termination... (Worker)";

class DeInitialize : public TestSupport::CWorkerFixture
{
protected:
    /** Holds the worker at its next query of a health log. */
    void HoldWorkerInAQuery(CGate& reached, CGate& go)
    {
        m_Drives.OnQuery([&](const std::string& query) {
            if (query == "health /dev/nvme0n1") {
                reached.Set();
                go.Pass();
            }
        });
        m_Api.m_ForceWorker.Set();
        reached.Pass();
    }

    std::uint32_t Request()
    {
        PI::CRequestData nothing;
        return m_Api.Request(PI::REQUEST_DEINITIALIZE, 0, nothing);
    }

    static std::vector<std::string> OwnLines(const CTraceCapture& capture)
    {
        std::vector<std::string> texts;
        for (const auto& line : capture.Lines())
            if (line.m_Function == "NAMESPACE_Ostrel::IPLUGINAPI_IMPL::DeInitialize")
                texts.push_back(std::to_string(line.m_Level) + ' ' + line.m_Text);
        return texts;
    }
};

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

// GCC's address sanitizer does not know forced unwinds and reports them as errors.
#if !defined(__SANITIZE_ADDRESS__)

namespace {

/** A pipe to which nobody writes. */
class CSilentPipe
{
public:
    CSilentPipe() { EXPECT_EQ(pipe(m_Ends.data()), 0); }
    ~CSilentPipe()
    {
        for (const int end : m_Ends)
            close(end);
    }
    CSilentPipe(const CSilentPipe&) = delete;
    CSilentPipe& operator=(const CSilentPipe&) = delete;

    void Read() const
    {
        TLX::Threading::interruptibly([descriptor = m_Ends[0]] {
            char byte = 0;
            return static_cast<int>(read(descriptor, &byte, 1));
        });
    }

private:
    std::array<int, 2> m_Ends{};
};

} // namespace

TEST_F(DeInitialize, EndsAWorkerByForceThatIsStuckInADeviceQuery)
{
    const CSilentPipe pipe;
    m_Drives.Add(CFakeDrive(0));
    Start();
    CGate reached;
    m_Drives.OnQuery([&](const std::string& query) {
        if (query == "health /dev/nvme0n1") {
            reached.Set();
            pipe.Read();
        }
    });
    m_Api.m_ForceWorker.Set();
    reached.Pass();
    EXPECT_EQ(Try(m_Api.m_DataLock), TimedOut);

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
    EXPECT_EQ(Try(m_Api.m_DataLock), Taken) << "the locks are released as the worker unwinds";
    EXPECT_EQ(Try(m_Api.m_EventsLock), Taken);
    EXPECT_EQ(m_Calls, 0);
    PI::CRequestData objects = std::vector<PI::CObject>();
    EXPECT_EQ(m_Api.Request(PI::REQUEST_GET_TOPOLOGY, 0, objects), PI::ERR_SUCCESS);
    EXPECT_THAT(std::get<std::vector<PI::CObject>>(objects), SizeIs(3));
}

#endif

namespace {

/** Lets the worker go when the last waiting line is written, so that it ends between the limit and the force.
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
