#pragma once

#include <TLX/Export.h>
#include <TLX/WaitResult.h>

#include <cstdint>
#include <functional>
#include <memory>

namespace TLX::Threading {

/** A thread of its own for one function. Safe from any thread. */
class TLX_EXPORT CThread
{
public:
    /** Starts a thread that runs `body`. Throws `std::system_error` when the system refuses. */
    explicit CThread(std::function<void()> body);
    /** Lets the thread go; it runs on if it has not ended. */
    ~CThread();
    CThread(const CThread&) = delete;
    CThread& operator=(const CThread&) = delete;

    /** Waits at most `timeout` milliseconds for the thread's end. Returns `Taken` or `TimedOut`. */
    [[nodiscard]] std::uint32_t Wait(std::uint32_t timeout = NO_TIME_LIMIT);

    /**
     * Ends the thread by force; it may run on for a while after this returns. The thread is pulled out of its
     * present or its next call of `interruptibly`, nowhere else, and unwinds from there; who catches
     * everything on the way has to pass `CForcedEnd` on. Windows cancels what the call waits for, and strikes
     * the thread down where it is, without unwinding, when the call has not come back a second later.
     */
    void Cancel();

private:
    struct Native;
    std::shared_ptr<Native> m_Native;
};

/**
 * Returns `call(argument)`, a blocking call that `CThread::Cancel` may break off at any instruction: it must
 * hold nothing that wants cleaning up. Only threads of a `CThread` can be pulled out.
 */
TLX_EXPORT int interruptibly(int (*call)(void* argument), void* argument);

/** The same for a function object. */
template<typename Call>
int interruptibly(Call call)
{
    return interruptibly([](void* object) { return (*static_cast<Call*>(object))(); }, &call);
}

} // namespace TLX::Threading
