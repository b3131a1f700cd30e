#pragma once

#include <TLXX/DeviceBackend.h>

#include <functional>
#include <memory>
#include <mutex>
#include <utility>

namespace TestSupport {

/** Announces drives to one subscriber when the test says so. Safe from any thread. */
class CAnnouncer
{
public:
    /** What a back-end's `Subscribe` returns. It must go before the announcer does. */
    std::unique_ptr<TLXX::IAnnouncements> Subscribe(std::function<void()> announce)
    {
        const std::scoped_lock guard(m_Lock);
        m_Announce = std::move(announce);
        return std::make_unique<CSubscription>(*this);
    }

    bool HasSubscriber() const
    {
        const std::scoped_lock guard(m_Lock);
        return m_Announce != nullptr;
    }

    void Announce() const
    {
        const std::scoped_lock guard(m_Lock);
        m_Announce();
    }

private:
    class CSubscription : public TLXX::IAnnouncements
    {
    public:
        explicit CSubscription(CAnnouncer& announcer) : m_Announcer(announcer) {}
        ~CSubscription() override
        {
            const std::scoped_lock guard(m_Announcer.m_Lock);
            m_Announcer.m_Announce = nullptr;
        }

    private:
        CAnnouncer& m_Announcer;
    };

    mutable std::mutex m_Lock;
    std::function<void()> m_Announce;
};

} // namespace TestSupport
