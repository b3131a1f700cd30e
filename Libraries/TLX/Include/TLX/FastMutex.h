#pragma once

#include <TLX/Export.h>
#include <TLX/ThreadAnnotations.h>
#include <TLX/WaitResult.h>

#include <cstdint>
#include <memory>

namespace TLX::Threading {
namespace Native_OS {

/**
 * A mutual-exclusion lock. Its owner may take it again and must release it as often as it took it. Every
 * operation is safe before `Init`: a wait then fails at once, a release does nothing.
 */
class TLX_EXPORT TLX_CAPABILITY("mutex") CFastMutex
{
public:
    CFastMutex() noexcept;
    ~CFastMutex();
    CFastMutex(const CFastMutex&) = delete;
    CFastMutex& operator=(const CFastMutex&) = delete;

    /**
     * Makes the lock ready. Returns `WaitResult::Taken`, or `WaitResult::Failed` when the system refuses. May
     * be repeated while no thread holds the lock; a lock that is ready stays as it is.
     */
    [[nodiscard]] std::uint32_t Init();

    /**
     * Takes the lock, waiting at most `timeout` milliseconds. Returns `Taken`, `TimedOut` or `Failed`. Code
     * that the thread-safety analysis must cover uses `CScopedGuard` instead.
     */
    [[nodiscard]] std::uint32_t Wait(std::uint32_t timeout = NO_TIME_LIMIT) TLX_NO_THREAD_SAFETY_ANALYSIS;

    /** Releases the lock once. Only its owner may call this. */
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
