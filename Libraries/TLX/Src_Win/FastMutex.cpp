#include <TLX/FastMutex.h>
#include <TLX/Win/UniqueHandle.h>

#include <new>

namespace TLX::Threading::Native_OS {

static_assert(NO_TIME_LIMIT == INFINITE);

struct CFastMutex::Native
{
    Win::CKernelObject m_Mutex{CreateMutexW(nullptr, FALSE, nullptr)};
};

CFastMutex::CFastMutex() noexcept = default;
CFastMutex::~CFastMutex() = default;

std::uint32_t CFastMutex::Init()
{
    if (m_Native)
        return WaitResult::Taken;
    std::unique_ptr<Native> native(new (std::nothrow) Native);
    if (!native || !native->m_Mutex.Valid())
        return WaitResult::Failed;
    m_Native = std::move(native);
    return WaitResult::Taken;
}

std::uint32_t CFastMutex::Wait(std::uint32_t timeout)
{
    if (!m_Native)
        return WaitResult::Failed;
    switch (WaitForSingleObject(m_Native->m_Mutex.Get(), timeout)) {
    case WAIT_OBJECT_0:
    case WAIT_ABANDONED: // the owner ended without releasing the lock
        return WaitResult::Taken;
    case WAIT_TIMEOUT:
        return WaitResult::TimedOut;
    default:
        return WaitResult::Failed;
    }
}

void CFastMutex::Release()
{
    if (m_Native)
        ReleaseMutex(m_Native->m_Mutex.Get());
}

} // namespace TLX::Threading::Native_OS
