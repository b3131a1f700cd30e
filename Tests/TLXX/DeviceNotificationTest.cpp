#include "Support/Announcer.h"
#include "Support/SilentBackend.h"
#include "Support/VirtualClock.h"

#include <TLX/Event.h>
#include <TLXX/DeviceBackend.h>
#include <TLXX/DeviceNotification.h>

#include <gtest/gtest.h>

#include <optional>
#include <system_error>
#include <thread>

namespace {

using TLX::Threading::WaitResult::Taken;
using TLX::Threading::WaitResult::TimedOut;

/** Announcements as the test makes them. */
class CAnnouncingBackend : public TestSupport::CSilentBackend
{
public:
    std::unique_ptr<TLXX::IAnnouncements> Subscribe(std::function<void()> announce) override
    {
        return m_Announcer.Subscribe(std::move(announce));
    }

    TestSupport::CAnnouncer m_Announcer;
};

class CBackendInPlace
{
public:
    explicit CBackendInPlace(std::shared_ptr<TLXX::IDeviceBackend> backend)
    {
        TLXX::setDeviceBackend(std::move(backend));
    }
    ~CBackendInPlace() { TLXX::setDeviceBackend(nullptr); }
    CBackendInPlace(const CBackendInPlace&) = delete;
    CBackendInPlace& operator=(const CBackendInPlace&) = delete;
};

class DeviceNotificationTest : public testing::Test
{
protected:
    DeviceNotificationTest()
    {
        EXPECT_EQ(m_Event->Init(false, false), Taken);
        m_Notification.emplace(*m_Event);
    }

    void Announce() const { m_Backend->m_Announcer.Announce(); }
    bool IsSignalled() { return m_Event->Wait(0) == Taken; }

    TestSupport::CVirtualClock m_Clock;
    std::shared_ptr<CAnnouncingBackend> m_Backend = std::make_shared<CAnnouncingBackend>();
    CBackendInPlace m_InPlace{m_Backend};
    std::optional<TLX::Threading::CEvent> m_Event{std::in_place};
    std::optional<TLXX::CDeviceNotification> m_Notification;
};

TEST(DeviceNotificationWithoutAnnouncementsTest, IsInactive)
{
    const CBackendInPlace inPlace(std::make_shared<TestSupport::CSilentBackend>());
    TLX::Threading::CEvent event;
    ASSERT_EQ(event.Init(false, false), Taken);
    EXPECT_FALSE(TLXX::CDeviceNotification(event).Active());
    EXPECT_FALSE(TLXX::CDeviceNotification::Available());
}

/** A system that has no resources left. */
class CExhaustedBackend : public TestSupport::CSilentBackend
{
public:
    std::unique_ptr<TLXX::IAnnouncements> Subscribe(std::function<void()>) override
    {
        throw std::system_error(std::make_error_code(std::errc::too_many_files_open));
    }
};

TEST(DeviceNotificationWithoutAnnouncementsTest, IsInactiveWhenTheSubscriptionFails)
{
    const CBackendInPlace inPlace(std::make_shared<CExhaustedBackend>());
    TLX::Threading::CEvent event;
    ASSERT_EQ(event.Init(false, false), Taken);
    EXPECT_FALSE(TLXX::CDeviceNotification(event).Active());
    EXPECT_FALSE(TLXX::CDeviceNotification::Available());
}

TEST(DeviceNotificationAvailableTest, LeavesNoSubscription)
{
    const auto backend = std::make_shared<CAnnouncingBackend>();
    const CBackendInPlace inPlace(backend);
    EXPECT_TRUE(TLXX::CDeviceNotification::Available());
    EXPECT_FALSE(backend->m_Announcer.HasSubscriber());
}

TEST_F(DeviceNotificationTest, SignalsAfterADelay)
{
    EXPECT_TRUE(m_Notification->Active());
    Announce();
    EXPECT_EQ(m_Clock.AwaitWait(1), 200u);
    m_Clock.Advance(199);
    EXPECT_FALSE(IsSignalled());
    m_Clock.Advance(1);
    EXPECT_EQ(m_Event->Wait(), Taken);
}

TEST_F(DeviceNotificationTest, SignalsOnceForAStormAndThenOnceASecond)
{
    Announce();
    (void)m_Clock.AwaitWait(1);
    for (int i = 0; i < 1000; ++i)
        Announce();
    m_Clock.Advance(200);
    EXPECT_EQ(m_Event->Wait(), Taken);

    Announce();
    EXPECT_EQ(m_Clock.AwaitWait(2), 1000u);
    EXPECT_FALSE(IsSignalled());
    m_Clock.Advance(1000);
    EXPECT_EQ(m_Event->Wait(), Taken);
}

TEST_F(DeviceNotificationTest, SignalsAtOnceAgainAfterAQuietTime)
{
    Announce();
    (void)m_Clock.AwaitWait(1);
    m_Clock.Advance(200);
    EXPECT_EQ(m_Event->Wait(), Taken);
    m_Clock.Advance(5000);
    Announce();
    EXPECT_EQ(m_Clock.AwaitWait(2), 200u);
}

TEST_F(DeviceNotificationTest, EndsWhileASignalIsDue)
{
    Announce();
    (void)m_Clock.AwaitWait(1);
    m_Notification.reset();
    EXPECT_FALSE(IsSignalled());
    EXPECT_FALSE(m_Backend->m_Announcer.HasSubscriber());
}

TEST_F(DeviceNotificationTest, OutlivesTheEvent)
{
    Announce();
    (void)m_Clock.AwaitWait(1);
    m_Event.reset();
    m_Clock.Advance(200);
    // Announcements up to the signal are part of it. The test cannot see the moment of the signal.
    const std::jthread announcer([this](const std::stop_token& stop) {
        while (!stop.stop_requested()) {
            Announce();
            std::this_thread::yield();
        }
    });
    EXPECT_EQ(m_Clock.AwaitWait(2), 1000u);
}

} // namespace
