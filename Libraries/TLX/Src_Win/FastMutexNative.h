#pragma once

#include <TLX/FastMutex.h>
#include <TLX/Win/UniqueHandle.h>

namespace TLX::Threading::Native_OS {

static_assert(NO_TIME_LIMIT == INFINITE);

/** The system's lock, ready from the start unless the system refused. */
struct CFastMutex::Native
{
    bool Valid() const { return m_Mutex.Valid(); }
    std::uint32_t Wait(std::uint32_t timeout);
    void Release() { ReleaseMutex(m_Mutex.Get()); }

private:
    Win::CKernelObject m_Mutex{CreateMutexW(nullptr, FALSE, nullptr)};
};

} // namespace TLX::Threading::Native_OS
