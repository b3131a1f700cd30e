#pragma once

#include <TLX/FastMutex.h>

#include <pthread.h>

namespace TLX::Threading::Native_OS {

/** The system's lock, ready from the start unless the system refused. */
struct CFastMutex::Native
{
    Native();
    ~Native();
    Native(const Native&) = delete;
    Native& operator=(const Native&) = delete;

    bool Valid() const { return m_Valid; }
    std::uint32_t Wait(std::uint32_t timeout);
    void Release() { pthread_mutex_unlock(&m_Mutex); }

private:
    int Lock(std::uint32_t timeout);

    pthread_mutex_t m_Mutex{};
    bool m_Valid = false;
};

} // namespace TLX::Threading::Native_OS
