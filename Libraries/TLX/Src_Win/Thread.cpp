#include "Wait.h"

#include <TLX/Thread.h>
#include <TLX/Win/UniqueHandle.h>

#include <atomic>
#include <mutex>
#include <system_error>
#include <utility>

#include <process.h>

namespace TLX::Threading {
namespace {

/** What a thread and whoever ends it by force have to know of each other. */
struct CInterruption
{
    std::atomic<bool> m_Cancelled = false;
    std::atomic<bool> m_Inside = false; ///< in a call that may be broken off
};

/** Of this thread; null when it is no `CThread`'s. */
thread_local CInterruption* t_Interruption = nullptr;

} // namespace

struct CThread::Native
{
    /** Runs on the thread; `argument` is a share of its own in the state. */
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
    body();
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
    m_Native->m_Thread = TLX::Win::CKernelObject(reinterpret_cast<HANDLE>(thread));
}

CThread::~CThread() = default;

std::uint32_t CThread::Wait(std::uint32_t timeout)
{
    return TLX::Win::waitFor(m_Native->m_Thread.Get(), timeout);
}

void CThread::Cancel()
{
    const std::scoped_lock guard(m_Native->m_Lock);
    m_Native->m_Interruption.m_Cancelled = true;
    if (!m_Native->m_Interruption.m_Inside)
        return;
    // A call that waits for a device comes back when its request is cancelled, and ends its thread itself.
    if (CancelSynchronousIo(m_Native->m_Thread.Get()) == 0)
        TerminateThread(m_Native->m_Thread.Get(), 0);
}

int interruptibly(int (*call)(void* argument), void* argument)
{
    CInterruption* const interruption = t_Interruption;
    if (interruption == nullptr)
        return call(argument);
    interruption->m_Inside = true;
    if (interruption->m_Cancelled)
        ExitThread(0);
    const int result = call(argument);
    if (interruption->m_Cancelled)
        ExitThread(0);
    interruption->m_Inside = false;
    return result;
}

} // namespace TLX::Threading
