#pragma once

#include <TLX/Export.h>
#include <TLX/WaitResult.h>

#include <cstdint>
#include <functional>
#include <memory>

namespace TLX::Threading {

/** A thread that runs one function. Safe from any thread. */
class TLX_EXPORT CThread
{
public:
    /** Starts a thread that runs `body`. Throws `std::system_error` when the system refuses. */
    explicit CThread(std::function<void()> body);
    /** Detaches the thread; it runs on if it has not ended. */
    ~CThread();
    CThread(const CThread&) = delete;
    CThread& operator=(const CThread&) = delete;

    /** Waits at most `timeout` milliseconds for the thread's end. Returns `Taken` or `TimedOut`. */
    [[nodiscard]] std::uint32_t Wait(std::uint32_t timeout = NO_TIME_LIMIT);

    /**
     * Ends the thread by force; it may run on for a while after this returns. The thread ends only in its
     * present or its next call of `interruptibly`, and unwinds from there. Code that catches everything on
     * the way must rethrow `CForcedEnd`. Windows first cancels the operation that the call waits for. When
     * the call has not returned a second later, Windows terminates the thread without unwinding.
     */
    void Cancel();

private:
    struct Native;
    std::shared_ptr<Native> m_Native;
};

/**
 * Returns `call(argument)`, a blocking call that `CThread::Cancel` may break off at any instruction. So the
 * call must hold nothing that needs a clean-up. Only threads of a `CThread` can be ended this way.
 */
TLX_EXPORT int interruptibly(int (*call)(void* argument), void* argument);

/** The same for a function object. */
template<typename Call>
int interruptibly(Call call)
{
    return interruptibly([](void* object) { return (*static_cast<Call*>(object))(); }, &call);
}

} // namespace TLX::Threading
