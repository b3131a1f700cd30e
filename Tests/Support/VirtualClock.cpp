#include "Support/VirtualClock.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

namespace TestSupport {

CVirtualClock::CVirtualClock(std::uint64_t now) : m_Start(now), m_Former(TLX::Misc::setClock(this)) {}

CVirtualClock::~CVirtualClock()
{
    TLX::Misc::setClock(m_Former);
}

std::uint64_t CVirtualClock::Now()
{
    const std::scoped_lock guard(m_Lock);
    return m_Start + m_Elapsed;
}

std::uint64_t CVirtualClock::Monotonic()
{
    const std::scoped_lock guard(m_Lock);
    return m_Elapsed;
}

void CVirtualClock::SleepUntil(std::uint64_t instant)
{
    std::function<void()> action;
    {
        const std::scoped_lock guard(m_Lock);
        action = m_OnSleep;
    }
    if (action)
        action();
    const std::scoped_lock guard(m_Lock);
    const std::uint64_t end = std::max(instant, m_Elapsed);
    m_Sleeps.push_back(end - m_Elapsed);
    MoveTo(end);
}

std::shared_ptr<TLX::Threading::CEvent> CVirtualClock::AlarmAt(std::uint64_t instant)
{
    auto event = std::make_shared<TLX::Threading::CEvent>();
    const std::scoped_lock guard(m_Lock);
    if (event->Init(instant <= m_Elapsed, true) != TLX::Threading::WaitResult::Taken)
        throw std::runtime_error("no event for an alarm");
    if (instant > m_Elapsed) {
        m_Alarms.push_back({instant, event});
        m_Waits.push_back(instant - m_Elapsed);
        m_WaitBegan.notify_all();
    }
    return event;
}

void CVirtualClock::Advance(std::uint64_t milliseconds)
{
    const std::scoped_lock guard(m_Lock);
    MoveTo(m_Elapsed + milliseconds);
}

std::vector<std::uint64_t> CVirtualClock::Sleeps() const
{
    const std::scoped_lock guard(m_Lock);
    return m_Sleeps;
}

void CVirtualClock::OnSleep(std::function<void()> action)
{
    const std::scoped_lock guard(m_Lock);
    m_OnSleep = std::move(action);
}

std::uint64_t CVirtualClock::AwaitWait(std::size_t count)
{
    std::unique_lock guard(m_Lock);
    m_WaitBegan.wait(guard, [&] { return m_Waits.size() >= count; });
    return m_Waits[count - 1];
}

void CVirtualClock::MoveTo(std::uint64_t elapsed)
{
    m_Elapsed = elapsed;
    std::erase_if(m_Alarms, [elapsed](const CAlarm& alarm) {
        const auto event = alarm.m_Event.lock();
        if (event && alarm.m_Instant <= elapsed)
            event->Set();
        return !event || alarm.m_Instant <= elapsed;
    });
}

} // namespace TestSupport
