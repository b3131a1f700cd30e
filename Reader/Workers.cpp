#include "Workers.h"

#include <algorithm>
#include <condition_variable>
#include <deque>
#include <mutex>
#include <system_error>
#include <thread>
#include <utility>

namespace Reader {

struct Workers::State
{
    std::mutex m_Lock;
    std::condition_variable m_Change;
    std::deque<std::function<void()>> m_Jobs;
    std::size_t m_Threads = 0;
    std::size_t m_Idle = 0;
    std::size_t m_Begun = 0; ///< jobs that a thread has taken
    bool m_Ended = false;
};

Workers::Workers(std::size_t most) : m_Most(most), m_State(std::make_shared<State>()) {}

Workers::~Workers()
{
    {
        const std::scoped_lock guard(m_State->m_Lock);
        m_State->m_Ended = true;
        m_State->m_Jobs.clear();
    }
    m_State->m_Change.notify_all();
}

void Workers::run(const std::shared_ptr<State>& state)
{
    std::unique_lock lock(state->m_Lock);
    for (;;) {
        ++state->m_Idle;
        // One idle thread is enough for quick jobs.
        const bool isSpare = state->m_Jobs.empty() && state->m_Idle > 1;
        if (!isSpare)
            state->m_Change.wait(lock, [&] { return state->m_Ended || !state->m_Jobs.empty(); });
        --state->m_Idle;
        if (isSpare || state->m_Ended)
            break;
        std::function<void()> job = std::move(state->m_Jobs.front());
        state->m_Jobs.pop_front();
        ++state->m_Begun;
        lock.unlock();
        job();
        job = nullptr;
        lock.lock();
    }
    --state->m_Threads;
}

void Workers::start(std::size_t count)
{
    const auto change = [&](bool more) {
        const std::scoped_lock guard(m_State->m_Lock);
        m_State->m_Threads += more ? 1 : -1;
    };
    for (; count > 0; --count) {
        change(true); // before it may end
        try {
            std::thread([state = m_State] { run(state); }).detach();
        } catch (const std::system_error&) {
            change(false);
            return; // Jobs wait, and `grow` tries again.
        }
    }
}

void Workers::add(std::function<void()> job)
{
    bool isFirst = false;
    {
        const std::scoped_lock guard(m_State->m_Lock);
        m_State->m_Jobs.push_back(std::move(job));
        isFirst = m_State->m_Threads == 0;
    }
    if (isFirst)
        start(1);
    m_State->m_Change.notify_one();
}

bool Workers::waiting() const
{
    const std::scoped_lock guard(m_State->m_Lock);
    return !m_State->m_Jobs.empty();
}

void Workers::grow()
{
    std::size_t more = 0;
    {
        const std::scoped_lock guard(m_State->m_Lock);
        if (!m_State->m_Jobs.empty() && m_State->m_Begun == m_Begun && m_State->m_Threads < m_Most)
            more = std::min({m_State->m_Jobs.size(), std::max<std::size_t>(m_State->m_Threads, 1),
                             m_Most - m_State->m_Threads});
        m_Begun = m_State->m_Begun;
    }
    start(more);
}

std::size_t Workers::threads() const
{
    const std::scoped_lock guard(m_State->m_Lock);
    return m_State->m_Threads;
}

} // namespace Reader
