#include "CancelledThreads.h"

#include <TLX/Event.h>
#include <TLX/Thread.h>

#include <cerrno>
#include <mutex>
#include <system_error>
#include <utility>

#include <pthread.h>

namespace TLX::Threading {
namespace {

/**
 * Whether this thread belongs to a `CThread`. Other threads decide for themselves whether they can be
 * cancelled.
 */
thread_local bool t_Interruptible = false;

/** Signals an event on destruction, however the scope is left. */
class CSignalAtEnd
{
public:
    explicit CSignalAtEnd(CEvent& event) : m_Event(event) {}
    ~CSignalAtEnd() { m_Event.Set(); }
    CSignalAtEnd(const CSignalAtEnd&) = delete;
    CSignalAtEnd& operator=(const CSignalAtEnd&) = delete;

private:
    CEvent& m_Event;
};

} // namespace

struct CThread::Native
{
    /** Runs on the thread. `argument` is the thread's own share of the state. */
    static void* Run(void* argument)
    {
        pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, nullptr);
        t_Interruptible = true;
        const std::unique_ptr<std::shared_ptr<Native>> self(static_cast<std::shared_ptr<Native>*>(argument));
        const CSignalAtEnd notice((*self)->m_Ended);
        // Destroyed before the end is signalled, because the code of `body` may be unloaded after that.
        const std::function<void()> body = std::move((*self)->m_Body);
        body();
        return nullptr;
    }

    std::function<void()> m_Body;
    CEvent m_Ended;
    std::mutex m_Lock;
    pthread_t m_Thread{};  ///< guarded by m_Lock while not joined
    bool m_Joined = false; ///< guarded by m_Lock
};

CThread::CThread(std::function<void()> body) : m_Native(std::make_shared<Native>())
{
    m_Native->m_Body = std::move(body);
    if (m_Native->m_Ended.Init(false, true) != WaitResult::Taken)
        throw std::system_error(EMFILE, std::generic_category(), "event of a thread");
    auto share = std::make_unique<std::shared_ptr<Native>>(m_Native);
    const int error = pthread_create(&m_Native->m_Thread, nullptr, &Native::Run, share.get());
    if (error != 0)
        throw std::system_error(error, std::generic_category(), "thread");
    (void)share.release(); // the thread's now
}

CThread::~CThread()
{
    const std::scoped_lock guard(m_Native->m_Lock);
    if (!m_Native->m_Joined)
        pthread_detach(m_Native->m_Thread);
}

std::uint32_t CThread::Wait(std::uint32_t timeout)
{
    const std::uint32_t result = m_Native->m_Ended.Wait(timeout);
    if (result == WaitResult::Taken) {
        const std::scoped_lock guard(m_Native->m_Lock);
        if (!std::exchange(m_Native->m_Joined, true))
            pthread_join(m_Native->m_Thread, nullptr);
    }
    // A state that cannot be read must not count as ended.
    return result == WaitResult::Taken ? WaitResult::Taken : WaitResult::TimedOut;
}

void CThread::Cancel()
{
    rememberCancelled([native = m_Native] { return native->m_Ended.Wait(0) != WaitResult::Taken; });
    const std::scoped_lock guard(m_Native->m_Lock);
    if (!m_Native->m_Joined)
        pthread_cancel(m_Native->m_Thread);
}

// Contains no object to destroy. In a function with such objects, the language's unwinder ends the process
// when it meets an instruction that should not throw; an asynchronous cancellation can come at any
// instruction.
int interruptibly(int (*call)(void* argument), void* argument)
{
    if (!t_Interruptible)
        return call(argument);
    // A device command is no point at which a deferred cancellation would strike.
    // NOLINTNEXTLINE(concurrency-thread-canceltype-asynchronous)
    pthread_setcanceltype(PTHREAD_CANCEL_ASYNCHRONOUS, nullptr);
    pthread_setcancelstate(PTHREAD_CANCEL_ENABLE, nullptr);
    const int result = call(argument);
    pthread_setcancelstate(PTHREAD_CANCEL_DISABLE, nullptr);
    pthread_setcanceltype(PTHREAD_CANCEL_DEFERRED, nullptr);
    return result;
}

} // namespace TLX::Threading
