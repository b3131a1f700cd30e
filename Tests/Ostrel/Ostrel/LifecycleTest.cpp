#include "WorkerFixture.h"

#include <TLX/Thread.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <chrono>
#include <future>
#include <memory>
#include <string>
#include <vector>

extern "C" void releaseIf(IPLUGINAPI** plugin);

namespace {

using testing::ElementsAre;
using testing::IsEmpty;
using TestSupport::CFakeDrive;
using TestSupport::CPluginUnderTest;
using TestSupport::CTraceCapture;
using TLX::Threading::WaitResult::Taken;
using TLX::Threading::WaitResult::TimedOut;

/** From request 1 to the end of the object. */
class Lifecycle : public TestSupport::CWorkerFixture
{
protected:
    Lifecycle() { m_Drives.Add(CFakeDrive(0)); }

    std::uint32_t Request3(PI::CRequestData& data)
    {
        return m_Api.Request(PI::REQUEST_DEINITIALIZE, 0, data);
    }
};

/** Notes that it is destroyed. */
class CMortal : public CPluginUnderTest
{
public:
    explicit CMortal(bool& destroyed) : m_Destroyed(destroyed) {}
    ~CMortal() override { m_Destroyed = true; }

private:
    bool& m_Destroyed;
};

/**
 * Tells the thread when it may end, and the test whether it was told. The thread shares it, because it may
 * live longer than the test.
 */
struct CThreadsEnd
{
    std::promise<void> m_May;
    std::promise<bool> m_WasLet;
};

} // namespace

TEST_F(Lifecycle, TriesADriveAgainAfterEachPauseAndNotBeforeIt)
{
    m_Drives.Change(0, [](CFakeDrive& drive) { drive.m_ControllerStatuses = {5, 5}; });
    std::vector<std::string> steps;
    m_Drives.OnQuery([&](const std::string& query) {
        if (query == "controller /dev/nvme0n1")
            steps.emplace_back("query");
    });
    m_Clock.OnSleep([&] { steps.emplace_back("pause"); });
    Initialize();
    EXPECT_THAT(steps, ElementsAre("query", "pause", "query", "pause", "query"));
}

TEST_F(Lifecycle, TheStopRequestStaysSetWhenTheWorkerHasSeenIt)
{
    Start();
    Stop();
    EXPECT_EQ(m_Api.m_StopRequest.Wait(0), Taken);
    EXPECT_EQ(m_Api.m_StopRequest.Wait(0), Taken);
}

TEST_F(Lifecycle, Request3SetsTheStopRequestWithoutAWorker)
{
    Initialize();
    EXPECT_EQ(m_Api.m_StopRequest.Wait(0), TimedOut);
    PI::CRequestData nothing;
    EXPECT_EQ(Request3(nothing), PI::ERR_SUCCESS);
    EXPECT_EQ(m_Api.m_StopRequest.Wait(0), Taken);
}

TEST_F(Lifecycle, Request3TakesAnyContainerAndLeavesItAlone)
{
    std::vector<PI::CRequestData> containers = {
        std::vector<PI::CAdapterID>(2),      std::vector<PI::CObject>(2),    std::vector<PI::CProperty>(2),
        PI::CProperty(PI::PROP_NAME, false), std::vector<PI::COperation>(2), PI::COperation()};
    for (PI::CRequestData& data : containers) {
        const std::size_t alternative = data.index();
        EXPECT_EQ(Request3(data), PI::ERR_SUCCESS) << alternative;
        EXPECT_EQ(data.index(), alternative);
    }
    EXPECT_EQ(std::get<std::vector<PI::CAdapterID>>(containers[0]).size(), 2U);
    EXPECT_EQ(std::get<std::vector<PI::CObject>>(containers[1]).size(), 2U);
}

TEST_F(Lifecycle, ReleaseIfDestroysTheObject)
{
    bool destroyed = false;
    IPLUGINAPI* plugin = std::make_unique<CMortal>(destroyed).release();
    releaseIf(&plugin);
    EXPECT_TRUE(destroyed);
    EXPECT_EQ(plugin, nullptr);
}

// Only request 3 ends a worker; code that destroys the object must have sent it before.
TEST_F(Lifecycle, TheDestructorNeitherStopsNorAwaitsAThread)
{
    const auto end = std::make_shared<CThreadsEnd>();
    std::future<bool> let = end->m_WasLet.get_future();
    auto plugin = std::make_unique<CPluginUnderTest>();
    plugin->m_WorkerThread = std::make_unique<TLX::Threading::CThread>([end] {
        const auto status = end->m_May.get_future().wait_for(std::chrono::seconds(10));
        end->m_WasLet.set_value(status == std::future_status::ready);
    });
    const CTraceCapture capture(~0U);
    plugin.reset();
    end->m_May.set_value();
    EXPECT_TRUE(let.get()) << "the destructor waited until the thread had ended by itself";
    EXPECT_THAT(m_Clock.Sleeps(), IsEmpty());
    EXPECT_THAT(capture.Texts(), IsEmpty());
}
