#include "Wait.h"

#include <TLX/WaitResult.h>

namespace TLX::Win {

static_assert(Threading::NO_TIME_LIMIT == INFINITE);

std::uint32_t waitFor(HANDLE object, std::uint32_t timeout)
{
    switch (WaitForSingleObject(object, timeout)) {
    case WAIT_OBJECT_0:
    case WAIT_ABANDONED: // the lock of a thread that ended without giving it back
        return Threading::WaitResult::Taken;
    case WAIT_TIMEOUT:
        return Threading::WaitResult::TimedOut;
    default:
        return Threading::WaitResult::Failed;
    }
}

} // namespace TLX::Win
