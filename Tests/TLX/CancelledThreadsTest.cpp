#include <TLX/CancelledThreads.h>
#include <TLX/Event.h>
#include <TLX/Thread.h>

#include <gtest/gtest.h>

#include <thread>

namespace {

using namespace TLX::Threading;

TEST(CancelledThreads, AreRememberedUntilTheyHaveEnded)
{
    CEvent end;
    ASSERT_EQ(end.Init(false, true), WaitResult::Taken);
    EXPECT_FALSE(cancelledThreadRuns());
    CThread thread([&end] { (void)end.Wait(); });
    EXPECT_FALSE(cancelledThreadRuns()) << "nobody has cancelled it";
    const std::uint64_t before = countCancelledThreads();
    thread.Cancel();
    EXPECT_TRUE(cancelledThreadRuns());
    EXPECT_EQ(countCancelledThreads(), before + 1);
    end.Set();
    EXPECT_EQ(thread.Wait(), WaitResult::Taken);
    EXPECT_FALSE(cancelledThreadRuns());
    EXPECT_EQ(countCancelledThreads(), before + 1) << "it was cancelled all the same";
}

TEST(CancelledThreads, AreRememberedWithoutTheirObject)
{
    CEvent end;
    ASSERT_EQ(end.Init(false, true), WaitResult::Taken);
    {
        CThread thread([&end] { (void)end.Wait(); });
        thread.Cancel();
    }
    EXPECT_TRUE(cancelledThreadRuns());
    end.Set();
    while (cancelledThreadRuns())
        std::this_thread::yield();
}

} // namespace
