#include "FastMutexNative.h"

#include <new>
#include <utility>

namespace TLX::Threading::Native_OS {

CFastMutex::CFastMutex() noexcept = default;
CFastMutex::~CFastMutex() = default;

std::uint32_t CFastMutex::Init()
{
    if (m_Native)
        return WaitResult::Taken;
    std::unique_ptr<Native> native(new (std::nothrow) Native);
    if (!native || !native->Valid())
        return WaitResult::Failed;
    m_Native = std::move(native);
    return WaitResult::Taken;
}

std::uint32_t CFastMutex::Wait(std::uint32_t timeout)
{
    return m_Native ? m_Native->Wait(timeout) : WaitResult::Failed;
}

void CFastMutex::Release()
{
    if (m_Native)
        m_Native->Release();
}

} // namespace TLX::Threading::Native_OS
