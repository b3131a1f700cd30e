#include "SystemCalls.h"

#include <cerrno>

#include <dlfcn.h>
#include <poll.h>
#include <pthread.h>
#include <signal.h>
#include <sys/eventfd.h>
#include <time.h>

namespace SystemCalls {

std::atomic<bool> g_RefuseMutex = false;
std::atomic<bool> g_RefuseEvent = false;
std::function<int(const std::function<int()>&)> g_Poll;

} // namespace SystemCalls

namespace {

template<typename Function>
Function* next(const char* name)
{
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

} // namespace

#define INTERPOSED extern "C" __attribute__((visibility("default")))

INTERPOSED int pthread_mutex_init(pthread_mutex_t* mutex, const pthread_mutexattr_t* attributes) noexcept
{
    if (SystemCalls::g_RefuseMutex)
        return EAGAIN;
    return next<int(pthread_mutex_t*, const pthread_mutexattr_t*)>("pthread_mutex_init")(mutex, attributes);
}

INTERPOSED int eventfd(unsigned int count, int flags) noexcept
{
    if (SystemCalls::g_RefuseEvent) {
        errno = EMFILE;
        return -1;
    }
    return next<int(unsigned int, int)>("eventfd")(count, flags);
}

INTERPOSED int ppoll(pollfd* entries, nfds_t count, const timespec* timeout, const sigset_t* signals)
{
    const auto call = [=] {
        return next<int(pollfd*, nfds_t, const timespec*, const sigset_t*)>("ppoll")(entries, count, timeout,
                                                                                     signals);
    };
    return SystemCalls::g_Poll ? SystemCalls::g_Poll(call) : call();
}

#if defined(__SANITIZE_THREAD__)

#include <sanitizer/tsan_interface.h>

// GCC 12's sanitizer does not know this function and must be told that the lock was taken.
INTERPOSED int pthread_mutex_clocklock(pthread_mutex_t* mutex, clockid_t clock,
                                       const timespec* deadline) noexcept
{
    const int result = next<int(pthread_mutex_t*, clockid_t, const timespec*)>("pthread_mutex_clocklock")(
        mutex, clock, deadline);
    if (result == 0 && dlsym(RTLD_DEFAULT, "__interceptor_pthread_mutex_clocklock") == nullptr) {
        __tsan_mutex_pre_lock(mutex, __tsan_mutex_write_reentrant);
        __tsan_mutex_post_lock(mutex, __tsan_mutex_write_reentrant, 1);
    }
    return result;
}

#endif
