#include "Support/VirtualClock.h"

#include <TLX/Event.h>
#include <TLX/Thread.h>

#include <gtest/gtest.h>

#include <atomic>
#include <chrono>
#include <future>
#include <memory>
#include <thread>

namespace {

using namespace TLX::Threading;

/** An event that is ready. */
class CReadyEvent : public CEvent
{
public:
    CReadyEvent() { EXPECT_EQ(Init(false, true), WaitResult::Taken); }
};

TEST(Thread, RunsItsBodyOnAnotherThread)
{
    std::thread::id id;
    CThread thread([&] { id = std::this_thread::get_id(); });
    EXPECT_EQ(thread.Wait(), 1U);
    EXPECT_NE(id, std::thread::id());
    EXPECT_NE(id, std::this_thread::get_id());
}

TEST(Thread, AWaitWithoutPatienceSaysWhetherItStillRuns)
{
    CReadyEvent end;
    CThread thread([&] { (void)end.Wait(); });
    EXPECT_EQ(thread.Wait(0), 130U);
    end.Set();
    EXPECT_EQ(thread.Wait(), 1U);
    EXPECT_EQ(thread.Wait(0), 1U);
    EXPECT_EQ(thread.Wait(), 1U);
}

TEST(Thread, AWaitEndsWithItsTimeOut)
{
    TestSupport::CVirtualClock clock;
    CReadyEvent end;
    CThread thread([&] { (void)end.Wait(); });
    auto result = std::async(std::launch::async, [&] { return thread.Wait(250); });
    EXPECT_EQ(clock.AwaitWait(1), 250U);
    clock.Advance(250);
    EXPECT_EQ(result.get(), 130U);
    end.Set();
    EXPECT_EQ(thread.Wait(), 1U);
}

TEST(Thread, ItsBodyIsGoneWhenTheWaitReturns)
{
    auto content = std::make_shared<int>(7);
    const std::weak_ptr<int> watched = content;
    CThread thread([held = std::move(content)] { EXPECT_EQ(*held, 7); });
    EXPECT_EQ(thread.Wait(), 1U);
    EXPECT_TRUE(watched.expired());
}

TEST(Thread, RunsOnWhenItsObjectGoes)
{
    const auto go = std::make_shared<CReadyEvent>();
    std::promise<void> done;
    auto result = done.get_future();
    {
        const CThread thread([go, &done] {
            (void)go->Wait();
            done.set_value();
        });
    }
    EXPECT_EQ(result.wait_for(std::chrono::seconds(0)), std::future_status::timeout);
    go->Set();
    result.get();
}

TEST(Thread, SeveralMayWaitForItsEnd)
{
    CReadyEvent end;
    CThread thread([&] { (void)end.Wait(); });
    auto other = std::async(std::launch::async, [&] { return thread.Wait(); });
    end.Set();
    EXPECT_EQ(thread.Wait(), 1U);
    EXPECT_EQ(other.get(), 1U);
}

TEST(Interruptibly, ReturnsWhatTheCallReturnsOnAnyThread)
{
    EXPECT_EQ(interruptibly([] { return 42; }), 42);
    std::atomic<int> result = 0;
    CThread thread([&] { result = interruptibly([] { return 43; }); });
    EXPECT_EQ(thread.Wait(), 1U);
    EXPECT_EQ(result, 43);
}

} // namespace
