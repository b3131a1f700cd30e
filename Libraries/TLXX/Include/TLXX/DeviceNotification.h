#pragma once

#include <TLXX/Export.h>

#include <cstdint>
#include <memory>

namespace TLX::Threading {
class CEvent;
}

namespace TLXX {

/** How long after the first announcement the event is signalled, in milliseconds. Most drives announce
 * several things at once. */
inline constexpr std::uint64_t NOTIFICATION_DELAY = 200;

/** The least time from one signal to the next, in milliseconds. */
inline constexpr std::uint64_t NOTIFICATION_PERIOD = 1000;

/**
 * While it lives, signals an event after drives may have come, gone or raised a warning. The announcements
 * come from the system, or from the back-end that is set at construction. The event may be destroyed before
 * this object.
 */
class TLXX_EXPORT CDeviceNotification
{
public:
    /** `event` must have been initialised. Never throws; see `Active`. */
    explicit CDeviceNotification(const TLX::Threading::CEvent& event) noexcept;
    /** Waits for a running signal. */
    ~CDeviceNotification();
    CDeviceNotification(const CDeviceNotification&) = delete;
    CDeviceNotification& operator=(const CDeviceNotification&) = delete;

    /**
     * Whether announcements are available. Without them the event is never signalled, and only polling finds
     * changes.
     */
    bool Active() const { return m_Native != nullptr; }

    /** Whether an object that is made now would be active. */
    static bool Available() noexcept;

private:
    class Native;
    std::unique_ptr<Native> m_Native;
};

} // namespace TLXX
