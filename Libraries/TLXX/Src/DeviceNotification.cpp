#include "Platform.h"

#include <TLX/Clock.h>
#include <TLX/Event.h>
#include <TLX/Thread.h>
#include <TLX/Waiter.h>
#include <TLXX/DeviceBackend.h>
#include <TLXX/DeviceNotification.h>

#include <algorithm>
#include <exception>
#include <functional>
#include <stdexcept>
#include <utility>

namespace TLXX {
namespace {

std::unique_ptr<IAnnouncements> subscribe(std::function<void()> announce)
{
    if (const auto backend = deviceBackend())
        return backend->Subscribe(std::move(announce));
    return Platform::subscribe(std::move(announce));
}

} // namespace

/** Collects announcements on a thread of its own and passes them on as few signals. */
class CDeviceNotification::Native
{
public:
    explicit Native(std::function<void()> signal) : m_Signal(std::move(signal))
    {
        if (m_Announced.Init(false, false) != TLX::Threading::WaitResult::Taken ||
            m_Stop.Init(false, true) != TLX::Threading::WaitResult::Taken)
            throw std::runtime_error("no events");
        m_Source = subscribe([this] { m_Announced.Set(); });
        if (m_Source)
            m_Thread.emplace([this] { Run(); });
    }

    ~Native()
    {
        m_Source.reset();
        m_Stop.Set();
        if (m_Thread)
            (void)m_Thread->Wait();
    }
    Native(const Native&) = delete;
    Native& operator=(const Native&) = delete;

    bool HasSource() const { return m_Source != nullptr; }

private:
    void Run()
    {
        constexpr std::uint32_t announced = 1;
        TLX::Threading::CWaiter waiter{&m_Announced, &m_Stop};
        std::uint64_t earliest = 0;
        while (waiter.Wait() == announced) {
            const std::uint64_t now = TLX::Misc::monotonic();
            const std::uint64_t due = std::max(now + NOTIFICATION_DELAY, earliest);
            if (m_Stop.Wait(static_cast<std::uint32_t>(due - now)) != TLX::Threading::WaitResult::TimedOut)
                return;
            // This signal covers what was announced up to here. A later announcement gets another signal.
            m_Announced.Reset();
            m_Signal();
            earliest = due + NOTIFICATION_PERIOD;
        }
    }

    const std::function<void()> m_Signal;
    TLX::Threading::CEvent m_Announced;
    TLX::Threading::CEvent m_Stop;
    std::unique_ptr<IAnnouncements> m_Source;
    std::optional<TLX::Threading::CThread> m_Thread;
};

CDeviceNotification::CDeviceNotification(const TLX::Threading::CEvent& event) noexcept
{
    try {
        auto native = std::make_unique<Native>(event.Signaller());
        if (native->HasSource())
            m_Native = std::move(native);
    } catch (const std::exception&) {
        // `Active` returns false then, and the caller has to poll.
    }
}

CDeviceNotification::~CDeviceNotification() = default;

bool CDeviceNotification::Available() noexcept
{
    try {
        return subscribe([] {}) != nullptr;
    } catch (const std::exception&) {
        return false;
    }
}

} // namespace TLXX
