#pragma once

#include <TLX/Linux/DescriptorWatch.h>
#include <TLXX/DeviceBackend.h>
#include <TLXX/Export.h>

#include <functional>

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

private:
    const TLX::Linux::CDescriptor m_Messages;
    const std::function<void()> m_Announce;
    const TLX::Linux::CDescriptorWatch m_Watch; // the last one, because its thread uses the others
};

/**
 * Reads all messages from the non-blocking socket `messages` without waiting. Calls `announce` for each that
 * concerns drives, and when messages were lost. Returns false when nothing will come any more.
 */
TLXX_EXPORT bool readAnnouncements(int messages, const std::function<void()>& announce);

/**
 * A socket on which the kernel announces devices. It needs no privilege. None when the system refuses it, or
 * sends no announcement to this network namespace, as in containers of ordinary users.
 */
TLXX_EXPORT TLX::Linux::CDescriptor openUeventSocket();

} // namespace TLXX::Linux
