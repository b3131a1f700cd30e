#pragma once

#include <condition_variable>
#include <functional>
#include <mutex>
#include <utility>

namespace TestSupport {

/**
 * Lets a fixed number of threads wait for one another, again and again. Replaces `std::barrier`: in GCC 12
 * its standard library sometimes fails to wake sleeping threads on systems without futexes.
 */
class CBarrier
{
public:
    /** `completion` runs in the last thread that arrives, before any thread goes on. */
    explicit CBarrier(
        unsigned threads, std::function<void()> completion = [] {})
        : m_Threads(threads), m_Completion(std::move(completion))
    {}

    void ArriveAndWait()
    {
        std::unique_lock guard(m_Lock);
        const unsigned round = m_Round;
        if (++m_Arrived < m_Threads) {
            m_Changed.wait(guard, [&] { return m_Round != round; });
            return;
        }
        m_Completion();
        m_Arrived = 0;
        ++m_Round;
        m_Changed.notify_all();
    }

private:
    unsigned m_Threads;
    std::function<void()> m_Completion;
    std::mutex m_Lock;
    std::condition_variable m_Changed;
    unsigned m_Arrived = 0;
    unsigned m_Round = 0;
};

} // namespace TestSupport
