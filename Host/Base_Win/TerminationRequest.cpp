#include "Base/Platform.h"

#include <TLX/WaitResult.h>

#include <atomic>
#include <system_error>

#include <windows.h>

namespace Host::Platform {
namespace {

// The system calls the console handler on a thread of its own at any time. It finds the state here.
TLX::Threading::CEvent askedToEnd;
TLX::Threading::CEvent hasEnded;
TLX::Threading::CEvent neverReloads;
std::atomic<bool> isDeferred = false;

BOOL WINAPI onConsole(DWORD what)
{
    if (!isDeferred)
        return FALSE;
    if (askedToEnd.Wait(0) == TLX::Threading::WaitResult::Taken &&
        (what == CTRL_C_EVENT || what == CTRL_BREAK_EVENT))
        return FALSE;
    askedToEnd.Set();
    // When a console closes or the system shuts down, Windows ends the process as soon as this function
    // returns.
    if (what != CTRL_C_EVENT && what != CTRL_BREAK_EVENT)
        (void)hasEnded.Wait();
    return TRUE;
}

} // namespace

struct TerminationRequest::Native
{
    Native()
    {
        if (askedToEnd.Init(false, true) != TLX::Threading::WaitResult::Taken ||
            hasEnded.Init(false, true) != TLX::Threading::WaitResult::Taken ||
            neverReloads.Init(false, false) != TLX::Threading::WaitResult::Taken ||
            SetConsoleCtrlHandler(onConsole, TRUE) == FALSE)
            throw std::system_error(static_cast<int>(GetLastError()), std::system_category(), "console");
    }

    ~Native()
    {
        // The event comes first, because removing the handler waits until the handler has returned.
        hasEnded.Set();
        SetConsoleCtrlHandler(onConsole, FALSE);
        isDeferred = false;
    }

    Native(const Native&) = delete;
    Native& operator=(const Native&) = delete;
};

TerminationRequest::TerminationRequest(HangUp /*hangUp*/) : m_Native(std::make_unique<Native>()) {}
TerminationRequest::~TerminationRequest() = default;

void TerminationRequest::defer()
{
    isDeferred = true;
}

TLX::Threading::CEvent& TerminationRequest::asked()
{
    return askedToEnd;
}

TLX::Threading::CEvent& TerminationRequest::reload()
{
    return neverReloads;
}

} // namespace Host::Platform
