#include "CancelledThreads.h"

#include <TLX/CancelledThreads.h>

#include <mutex>
#include <utility>
#include <vector>

namespace TLX::Threading {
namespace {

struct CCancelledThreads
{
    std::mutex m_Lock;
    std::vector<std::function<bool()>> m_Running; ///< guarded by m_Lock
    std::uint64_t m_Count = 0;                    ///< guarded by m_Lock
};

/** Never destroyed: threads may be cancelled until the process has ended. */
CCancelledThreads& cancelledThreads()
{
    static auto& threads = *new CCancelledThreads;
    return threads;
}

} // namespace

void rememberCancelled(std::function<bool()> runs)
{
    CCancelledThreads& threads = cancelledThreads();
    const std::scoped_lock guard(threads.m_Lock);
    threads.m_Running.push_back(std::move(runs));
    ++threads.m_Count;
}

bool cancelledThreadRuns()
{
    CCancelledThreads& threads = cancelledThreads();
    const std::scoped_lock guard(threads.m_Lock);
    std::erase_if(threads.m_Running, [](const std::function<bool()>& runs) { return !runs(); });
    return !threads.m_Running.empty();
}

std::uint64_t countCancelledThreads()
{
    CCancelledThreads& threads = cancelledThreads();
    const std::scoped_lock guard(threads.m_Lock);
    return threads.m_Count;
}

} // namespace TLX::Threading
