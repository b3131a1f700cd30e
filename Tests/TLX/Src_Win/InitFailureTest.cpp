#include "Support_Win/ImportPatch.h"

#include <TLX/Event.h>
#include <TLX/FastMutex.h>

#include <gtest/gtest.h>

#include <windows.h>

namespace {

using namespace TLX::Threading;
using TestSupport::CImportPatch;

HANDLE WINAPI noMutex(LPSECURITY_ATTRIBUTES /*attributes*/, BOOL /*owned*/, LPCWSTR /*name*/)
{
    return nullptr;
}

HANDLE WINAPI noEvent(LPSECURITY_ATTRIBUTES /*attributes*/, BOOL /*manual*/, BOOL /*signalled*/,
                      LPCWSTR /*name*/)
{
    return nullptr;
}

TEST(InitFailure, OfAMutexLeavesItUnusableUntilTheSystemAgrees)
{
    Native_OS::CFastMutex mutex;
    {
        const CImportPatch refusal(L"TLX.dll", "CreateMutexW", noMutex);
        EXPECT_EQ(mutex.Init(), WaitResult::Failed);
    }
    EXPECT_EQ(mutex.Wait(), WaitResult::Failed);
    mutex.Release();

    EXPECT_EQ(mutex.Init(), WaitResult::Taken);
    EXPECT_EQ(mutex.Wait(), WaitResult::Taken);
    mutex.Release();
}

TEST(InitFailure, OfAnEventLeavesItUnusableUntilTheSystemAgrees)
{
    CEvent event;
    {
        const CImportPatch refusal(L"TLX.dll", "CreateEventW", noEvent);
        EXPECT_EQ(event.Init(true, true), WaitResult::Failed);
    }
    EXPECT_EQ(event.Wait(), WaitResult::Failed);
    event.Set();
    event.Reset();

    EXPECT_EQ(event.Init(true, false), WaitResult::Taken);
    EXPECT_EQ(event.Wait(), WaitResult::Taken);
}

} // namespace
