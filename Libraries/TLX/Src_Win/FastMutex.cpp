#include "Wait.h"

#include <TLX/FastMutex.h>
#include <TLX/Win/UniqueHandle.h>

#include <new>

namespace TLX::Threading::Native_OS {

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
    return m_Native ? Win::waitFor(m_Native->m_Mutex.Get(), timeout) : WaitResult::Failed;
}

void CFastMutex::Release()
{
    if (m_Native)
        ReleaseMutex(m_Native->m_Mutex.Get());
}

} // namespace TLX::Threading::Native_OS
