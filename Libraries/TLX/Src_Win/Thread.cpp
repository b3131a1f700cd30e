#include "CancelledThreads.h"
#include "Interruption.h"
#include "Wait.h"

#include <TLX/ForcedEnd.h>
#include <TLX/Thread.h>
#include <TLX/Win/UniqueHandle.h>

#include <mutex>
#include <system_error>
#include <utility>

#include <process.h>

namespace TLX::Threading {
namespace {

/** How often a call's request is cancelled, and how many milliseconds the call then has to return. */
constexpr int ATTEMPTS = 20;
constexpr DWORD TIME_TO_COME_BACK = 50;

/** That of the current thread; null when it belongs to no `CThread`. */
thread_local CInterruption* t_Interruption = nullptr;

} // namespace

struct CThread::Native
{
    /** Runs on the thread. `argument` is the thread's own share of the state. */
    static unsigned __stdcall Run(void* argument);

    std::function<void()> m_Body;
    std::mutex m_Lock;
    TLX::Win::CKernelObject m_Thread;
    CInterruption m_Interruption;
};

unsigned CThread::Native::Run(void* argument)
{
    const std::unique_ptr<std::shared_ptr<Native>> self(static_cast<std::shared_ptr<Native>*>(argument));
    t_Interruption = &(*self)->m_Interruption;
    const std::function<void()> body = std::move((*self)->m_Body);
    try {
        body();
    } catch (CForcedEnd&) { // as ordered
    }
    return 0;
}

CThread::CThread(std::function<void()> body) : m_Native(std::make_shared<Native>())
{
    m_Native->m_Body = std::move(body);
    auto share = std::make_unique<std::shared_ptr<Native>>(m_Native);
    const std::uintptr_t thread = _beginthreadex(nullptr, 0, &Native::Run, share.get(), 0, nullptr);
    if (thread == 0)
        throw std::system_error(errno, std::generic_category(), "thread");
    (void)share.release(); // the thread's now
    // NOLINTNEXTLINE(performance-no-int-to-ptr): a handle, as the runtime hands it out
    m_Native->m_Thread = TLX::Win::CKernelObject(reinterpret_cast<HANDLE>(thread));
}

CThread::~CThread() = default;

std::uint32_t CThread::Wait(std::uint32_t timeout)
{
    const HANDLE thread = m_Native->m_Thread.Get();
    const auto ended = [](std::size_t) { return true; };
    const CWaitInterval interval(timeout);
    const std::uint32_t result =
        Win::waitForAny({&thread, 1}, timeout == NO_TIME_LIMIT ? nullptr : &interval, ended);
    // A state that cannot be read must not count as ended.
    return result == WaitResult::Taken ? WaitResult::Taken : WaitResult::TimedOut;
}

void CThread::Cancel()
{
    rememberCancelled(
        [native = m_Native] { return WaitForSingleObject(native->m_Thread.Get(), 0) != WAIT_OBJECT_0; });
    const std::scoped_lock guard(m_Native->m_Lock);
    const HANDLE thread = m_Native->m_Thread.Get();
    CInterruption& interruption = m_Native->m_Interruption;
    interruption.Request();
    // A call that waits for a device returns when its request is cancelled, and its thread unwinds. The
    // cancellation is repeated, because the call may be just about to make its request.
    for (int attempt = 0; attempt < ATTEMPTS && interruption.Inside(); ++attempt) {
        CancelSynchronousIo(thread);
        if (WaitForSingleObject(thread, TIME_TO_COME_BACK) == WAIT_OBJECT_0)
            return;
    }
    if (interruption.Doom())
        TerminateThread(thread, 0);
}

int interruptibly(int (*call)(void* argument), void* argument)
{
    CInterruption* const interruption = t_Interruption;
    if (interruption == nullptr)
        return call(argument);
    interruption->Enter();
    const int result = call(argument);
    interruption->Leave();
    return result;
}

} // namespace TLX::Threading
