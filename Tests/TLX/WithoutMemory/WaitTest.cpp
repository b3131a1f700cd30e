#include "Support/AllocationFailure/AllocationFailure.h"

#include <TLX/Thread.h>
#include <TLX/Waiter.h>

#include <gtest/gtest.h>

namespace {

using namespace TLX::Threading;

/** The result of `wait` when there is no memory. It must not allocate any. */
template<typename Wait>
std::uint32_t withoutMemory(Wait wait)
{
    const CAllocationFailure failure(0);
    const std::uint32_t result = wait();
    EXPECT_TRUE(CAllocationFailure::Pending());
    return result;
}

TEST(WithoutMemory, AWaiterWaits)
{
    CEvent first;
    CEvent second;
    ASSERT_EQ(first.Init(false, false), WaitResult::Taken);
    ASSERT_EQ(second.Init(true, false), WaitResult::Taken);
    const auto wait = [&] {
        // A worker makes its waiter before it enters any handler of exceptions.
        CWaiter waiter{&first, &second};
        return waiter.Wait(CWaitInterval(1));
    };
    EXPECT_EQ(withoutMemory(wait), 2U);
    EXPECT_EQ(withoutMemory(wait), WaitResult::TimedOut);
}

TEST(WithoutMemory, AnEventIsWaitedFor)
{
    CEvent event;
    ASSERT_EQ(event.Init(true, false), WaitResult::Taken);
    EXPECT_EQ(withoutMemory([&] { return event.Wait(); }), WaitResult::Taken);
    EXPECT_EQ(withoutMemory([&] { return event.Wait(1); }), WaitResult::TimedOut);
}

TEST(WithoutMemory, TheEndOfAThreadIsWaitedFor)
{
    CEvent end;
    ASSERT_EQ(end.Init(false, true), WaitResult::Taken);
    CThread thread([&] { (void)end.Wait(); });
    EXPECT_EQ(withoutMemory([&] { return thread.Wait(1); }), WaitResult::TimedOut);
    end.Set();
    EXPECT_EQ(thread.Wait(), WaitResult::Taken);
}

} // namespace
