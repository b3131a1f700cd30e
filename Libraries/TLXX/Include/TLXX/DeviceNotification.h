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
 * While it lives, signals an event after drives may have come, gone or raised a warning. The system announces
 * that, or the back-end that is set when this is made. The event may be gone before it.
 */
class TLXX_EXPORT CDeviceNotification
{
public:
    /** `event` must have been initialised. Never throws; see `Active`. */
    explicit CDeviceNotification(const TLX::Threading::CEvent& event) noexcept;
    /** Waits for a signal that is under way. */
    ~CDeviceNotification();
    CDeviceNotification(const CDeviceNotification&) = delete;
    CDeviceNotification& operator=(const CDeviceNotification&) = delete;

    /** Whether announcements can be had. Otherwise the event is never signalled, and only polling helps. */
    bool Active() const { return m_Native != nullptr; }

private:
    class Native;
    std::unique_ptr<Native> m_Native;
};

} // namespace TLXX
