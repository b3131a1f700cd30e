#pragma once

#include <TLXX/DeviceBackend.h>

#include <functional>
#include <list>
#include <memory>
#include <mutex>
#include <utility>

namespace TestSupport {

/** Announces drives to all subscribers when the test says so. Safe from any thread. */
class CAnnouncer
{
public:
    /** What a back-end's `Subscribe` returns. It must go before the announcer does. */
    std::unique_ptr<TLXX::IAnnouncements> Subscribe(std::function<void()> announce)
    {
        const std::scoped_lock guard(m_Lock);
        return std::make_unique<CSubscription>(
            *this, m_Subscribers.insert(m_Subscribers.end(), std::move(announce)));
    }

    bool HasSubscriber() const
    {
        const std::scoped_lock guard(m_Lock);
        return !m_Subscribers.empty();
    }

    void Announce() const
    {
        const std::scoped_lock guard(m_Lock);
        for (const std::function<void()>& announce : m_Subscribers)
            announce();
    }

private:
    using CSubscribers = std::list<std::function<void()>>;

    class CSubscription : public TLXX::IAnnouncements
    {
    public:
        CSubscription(CAnnouncer& announcer, CSubscribers::iterator place)
            : m_Announcer(announcer), m_Place(place)
        {}
        ~CSubscription() override
        {
            const std::scoped_lock guard(m_Announcer.m_Lock);
            m_Announcer.m_Subscribers.erase(m_Place);
        }

    private:
        CAnnouncer& m_Announcer;
        const CSubscribers::iterator m_Place;
    };

    mutable std::mutex m_Lock;
    CSubscribers m_Subscribers;
};

} // namespace TestSupport
