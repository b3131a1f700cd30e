#include "../FailingSystem.h"

#include <cerrno>

#include <dlfcn.h>
#include <pthread.h>
#include <sys/eventfd.h>

/** The libraries of the process find this function before the system's function of the same name. */
#define INTERPOSED __attribute__((visibility("default")))

namespace {

// Constant-initialised, because constructors of other libraries also call it.
constinit int g_MutexesLeft = FailingSystem::ALL;
constinit int g_EventsLeft = FailingSystem::ALL;

bool isTheFailingOne(int& left)
{
    return left >= 0 && left-- == 0;
}

template<typename Function>
Function systemFunction(const char* name)
{
    return reinterpret_cast<Function>(dlsym(RTLD_NEXT, name));
}

} // namespace

void FailingSystem::let(int mutexes, int events)
{
    g_MutexesLeft = mutexes;
    g_EventsLeft = events;
}

extern "C" INTERPOSED int pthread_mutex_init(pthread_mutex_t* mutex,
                                             const pthread_mutexattr_t* attributes) noexcept
{
    if (isTheFailingOne(g_MutexesLeft))
        return ENOMEM;
    static const auto function =
        systemFunction<int (*)(pthread_mutex_t*, const pthread_mutexattr_t*)>("pthread_mutex_init");
    return function(mutex, attributes);
}

extern "C" INTERPOSED int eventfd(unsigned int count, int flags) noexcept
{
    if (isTheFailingOne(g_EventsLeft)) {
        errno = EMFILE;
        return -1;
    }
    static const auto function = systemFunction<int (*)(unsigned int, int)>("eventfd");
    return function(count, flags);
}
