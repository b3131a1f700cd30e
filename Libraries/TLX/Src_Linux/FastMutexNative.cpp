#include "FastMutexNative.h"

#include <cerrno>

#include <time.h>

namespace TLX::Threading::Native_OS {
namespace {

/** The attributes of a mutex that its owner may take again. */
class CRecursiveAttributes
{
public:
    CRecursiveAttributes()
        : m_Ready(pthread_mutexattr_init(&m_Attributes) == 0 &&
                  pthread_mutexattr_settype(&m_Attributes, PTHREAD_MUTEX_RECURSIVE) == 0)
    {}
    ~CRecursiveAttributes() { pthread_mutexattr_destroy(&m_Attributes); }
    CRecursiveAttributes(const CRecursiveAttributes&) = delete;
    CRecursiveAttributes& operator=(const CRecursiveAttributes&) = delete;

    const pthread_mutexattr_t* Get() const { return m_Ready ? &m_Attributes : nullptr; }

private:
    pthread_mutexattr_t m_Attributes{};
    bool m_Ready;
};

timespec monotonicAfter(std::uint32_t duration)
{
    constexpr long NANOSECONDS_A_SECOND = 1'000'000'000;
    timespec instant{};
    clock_gettime(CLOCK_MONOTONIC, &instant);
    instant.tv_sec += duration / 1000;
    instant.tv_nsec += static_cast<long>(duration % 1000) * 1'000'000;
    if (instant.tv_nsec >= NANOSECONDS_A_SECOND) {
        ++instant.tv_sec;
        instant.tv_nsec -= NANOSECONDS_A_SECOND;
    }
    return instant;
}

} // namespace

CFastMutex::Native::Native()
{
    const CRecursiveAttributes attributes;
    m_Valid = attributes.Get() != nullptr && pthread_mutex_init(&m_Mutex, attributes.Get()) == 0;
}

CFastMutex::Native::~Native()
{
    if (m_Valid)
        pthread_mutex_destroy(&m_Mutex);
}

int CFastMutex::Native::Lock(std::uint32_t timeout)
{
    if (timeout == NO_TIME_LIMIT)
        return pthread_mutex_lock(&m_Mutex);
    if (timeout == 0)
        return pthread_mutex_trylock(&m_Mutex);
    const timespec deadline = monotonicAfter(timeout);
    return pthread_mutex_clocklock(&m_Mutex, CLOCK_MONOTONIC, &deadline);
}

std::uint32_t CFastMutex::Native::Wait(std::uint32_t timeout)
{
    switch (Lock(timeout)) {
    case 0:
        return WaitResult::Taken;
    case ETIMEDOUT:
    case EBUSY:
        return WaitResult::TimedOut;
    default:
        return WaitResult::Failed;
    }
}

} // namespace TLX::Threading::Native_OS
