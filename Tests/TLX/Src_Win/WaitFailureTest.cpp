#include "Support_Win/ImportPatch.h"

#include <TLX/Event.h>
#include <TLX/Thread.h>

#include <gtest/gtest.h>

#include <windows.h>

namespace {

using namespace TLX::Threading;
using TestSupport::CImportPatch;

DWORD WINAPI noWait(DWORD /*count*/, const HANDLE* /*objects*/, BOOL /*all*/, DWORD /*timeout*/)
{
    return WAIT_FAILED;
}

TEST(WaitFailure, OfAnEventIsTold)
{
    CEvent event;
    ASSERT_EQ(event.Init(true, true), WaitResult::Taken);
    const CImportPatch refusal(L"TLX.dll", "WaitForMultipleObjects", noWait);
    EXPECT_EQ(event.Wait(), WaitResult::Failed);
}

TEST(WaitFailure, OfAThreadDoesNotPassForItsEnd)
{
    CThread thread([] {});
    EXPECT_EQ(thread.Wait(), WaitResult::Taken);
    const CImportPatch refusal(L"TLX.dll", "WaitForMultipleObjects", noWait);
    EXPECT_EQ(thread.Wait(), WaitResult::TimedOut);
    EXPECT_EQ(thread.Wait(0), WaitResult::TimedOut);
}

} // namespace
