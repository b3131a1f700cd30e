#pragma once

#include <TLX/FastMutex.h>
#include <TLX/WaitResult.h>

#include <cstdint>
#include <future>

namespace TestSupport {

/** The result when another thread tries to take the lock without a wait; it releases the lock again. */
inline std::uint32_t tryElsewhere(TLX::Threading::Native_OS::CFastMutex& lock)
{
    return std::async(std::launch::async,
                      [&lock] {
                          const std::uint32_t result = lock.Wait(0);
                          if (result == TLX::Threading::WaitResult::Taken)
                              lock.Release();
                          return result;
                      })
        .get();
}

} // namespace TestSupport
