#pragma once

#include <TLX/Linux/Descriptor.h>
#include <TLX/Thread.h>
#include <TLXX/DeviceBackend.h>
#include <TLXX/Export.h>

#include <functional>
#include <optional>

namespace TLXX::Linux {

/** Reads the kernel's messages on a thread of its own and announces those that concern drives. */
class TLXX_EXPORT CUeventAnnouncements : public IAnnouncements
{
public:
    /**
     * `messages` is a non-blocking datagram socket. From a netlink socket only messages of the kernel itself
     * count. Throws `std::system_error` when the system refuses a thread or descriptor.
     */
    CUeventAnnouncements(TLX::Linux::CDescriptor messages, std::function<void()> announce);
    ~CUeventAnnouncements() override;

private:
    void Run();
    /** Reads all messages that have come. Returns false when no more can come. */
    bool ReadAll();

    const TLX::Linux::CDescriptor m_Messages;
    const TLX::Linux::CDescriptor m_Stop;
    const std::function<void()> m_Announce;
    std::optional<TLX::Threading::CThread> m_Thread;
};

/** A socket on which the kernel announces devices. It needs no privilege. None when the system refuses it. */
TLXX_EXPORT TLX::Linux::CDescriptor openUeventSocket();

} // namespace TLXX::Linux
