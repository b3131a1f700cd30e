#include "Commands/Session.h"

#include "Host/Built.h"
#include "Host/FakeOutput.h"
#include "Support/SilentBackend.h"
#include "Support/TemporaryFolder.h"
#include "Support/VirtualClock.h"

#include <TLX/Event.h>
#include <TLX/Thread.h>

#include <gtest/gtest.h>

#include <atomic>
#include <memory>

namespace {

using namespace Host::Cli;

/** Counts how often somebody looks which drives there are. */
class CountingBackend : public TestSupport::CSilentBackend
{
public:
    std::vector<TLXX::CControllerState> ControllerStates() override
    {
        ++m_Looks;
        return {};
    }

    std::atomic<int> m_Looks = 0;
};

TEST(WatchedTest, LooksAtNoDriveAfterAPluginWasEndedByForce)
{
    const TestSupport::CTemporaryFolder data;
    HostTest::FakeOutput results(false);
    HostTest::FakeOutput messages(false);
    Terminal terminal(results, messages);
    const Options options = parseCommandLine(
        {"ostrel", "watch", "--data", data.Path().string(), "--plugin", HostTest::Built::SLOW_PLUGIN});
    const auto backend = std::make_shared<CountingBackend>();
    const auto former = TLXX::setDeviceBackend(backend);
    TestSupport::CVirtualClock clock;
    {
        const Session session(options, terminal);
        Host::Watched watched(session.watchPlan());
        watched.start();
        Host::Monitor& monitor = watched.monitors().front();
        int looks = backend->m_Looks;
        (void)watched.collect(monitor);
        EXPECT_EQ(backend->m_Looks, looks + 1);
        watched.stopLooking();
        (void)watched.collect(monitor);
        EXPECT_EQ(backend->m_Looks, looks + 1);

        TLX::Threading::CEvent end;
        EXPECT_EQ(end.Init(true, true), TLX::Threading::WaitResult::Taken);
        clock.OnSleep([&end] {
            TLX::Threading::CThread thread([&end] { (void)end.Wait(); });
            thread.Cancel();
            EXPECT_EQ(thread.Wait(), TLX::Threading::WaitResult::Taken);
        });
        EXPECT_EQ(monitor.stop(), Host::Ending::ByForce);
        clock.OnSleep({});
        looks = backend->m_Looks;
        (void)watched.collect(monitor);
        EXPECT_EQ(watched.objects().objects().size(), 1U);
        EXPECT_EQ(watched.objectsOf(monitor, {}).objects().size(), 1U);
        EXPECT_EQ(backend->m_Looks, looks);
    }
    TLXX::setDeviceBackend(former);
}

} // namespace
