#pragma once

#include <TLX/Export.h>
#include <TLX/ThreadAnnotations.h>
#include <TLX/WaitResult.h>

#include <cstdint>
#include <memory>

namespace TLX::Threading {
namespace Native_OS {

/**
 * A mutual-exclusion lock, re-entrant for its owner, who releases it as often as it was taken.
 * Every operation is safe before `Init`: a wait then fails at once, a release does nothing.
 */
class TLX_EXPORT TLX_CAPABILITY("mutex") CFastMutex
{
public:
    CFastMutex() noexcept;
    ~CFastMutex();
    CFastMutex(const CFastMutex&) = delete;
    CFastMutex& operator=(const CFastMutex&) = delete;

    /**
     * Makes the lock ready. Returns `WaitResult::Taken`, or `WaitResult::Failed` when the system refuses.
     * May be repeated while nobody holds the lock; a lock that is ready stays as it is.
     */
    [[nodiscard]] std::uint32_t Init();

    /**
     * Takes the lock, waiting at most `timeout` milliseconds. Returns `Taken`, `TimedOut` or `Failed`.
     * A caller that must know takes it through `CScopedGuard`, for which the analysis holds.
     */
    [[nodiscard]] std::uint32_t Wait(std::uint32_t timeout = NO_TIME_LIMIT) TLX_NO_THREAD_SAFETY_ANALYSIS;

    /** Gives the lock back once. Only its owner may call this. */
    void Release() TLX_NO_THREAD_SAFETY_ANALYSIS;

private:
    struct Native;
    std::unique_ptr<Native> m_Native;
};

} // namespace Native_OS

/** Holds a lock from construction to destruction. */
class TLX_EXPORT TLX_SCOPED_CAPABILITY CScopedGuard
{
public:
    /** Takes `mutex` without a time limit. */
    explicit CScopedGuard(Native_OS::CFastMutex& mutex) TLX_ACQUIRE(mutex);
    ~CScopedGuard() TLX_RELEASE();
    CScopedGuard(const CScopedGuard&) = delete;
    CScopedGuard& operator=(const CScopedGuard&) = delete;

private:
    Native_OS::CFastMutex& m_Mutex;
    bool m_Taken;
};

} // namespace TLX::Threading
