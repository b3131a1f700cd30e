#include "SystemCalls.h"

#include <TLX/Event.h>
#include <TLX/FastMutex.h>

#include <gtest/gtest.h>

namespace {

using namespace TLX::Threading;
using Native_OS::CFastMutex;

TEST(InitFailure, OfAMutexLeavesItUnusableUntilTheSystemAgrees)
{
    CFastMutex mutex;
    SystemCalls::g_RefuseMutex = true;
    const std::uint32_t refused = mutex.Init();
    SystemCalls::g_RefuseMutex = false;
    EXPECT_EQ(refused, WaitResult::Failed);
    EXPECT_EQ(mutex.Wait(), WaitResult::Failed);
    mutex.Release();

    EXPECT_EQ(mutex.Init(), WaitResult::Taken);
    EXPECT_EQ(mutex.Wait(), WaitResult::Taken);
    mutex.Release();
}

TEST(InitFailure, OfAnEventLeavesItUnusableUntilTheSystemAgrees)
{
    CEvent event;
    SystemCalls::g_RefuseEvent = true;
    const std::uint32_t refused = event.Init(true, true);
    SystemCalls::g_RefuseEvent = false;
    EXPECT_EQ(refused, WaitResult::Failed);
    EXPECT_EQ(event.Wait(), WaitResult::Failed);
    event.Set();
    event.Reset();

    EXPECT_EQ(event.Init(true, false), WaitResult::Taken);
    EXPECT_EQ(event.Wait(), WaitResult::Taken);
}

} // namespace
