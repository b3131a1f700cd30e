#pragma once

#include <TLX/Linux/DescriptorWatch.h>
#include <TLXX/DeviceBackend.h>
#include <TLXX/Export.h>

#include <functional>

namespace TLXX::Linux {

/** Reads the kernel's messages on a thread of its own and announces those about drives. */
class TLXX_EXPORT CUeventAnnouncements : public IAnnouncements
{
public:
    /**
     * `messages` is a datagram socket that does not block. Of a netlink socket only what the kernel itself
     * sent counts. Throws `std::system_error` when the system refuses what this needs.
     */
    CUeventAnnouncements(TLX::Linux::CDescriptor messages, std::function<void()> announce);

private:
    /** Reads what has come. Returns false when nothing will come any more. */
    bool ReadAll() const;

    const TLX::Linux::CDescriptor m_Messages;
    const std::function<void()> m_Announce;
    const TLX::Linux::CDescriptorWatch m_Watch; // the last one, because its thread uses the others
};

/** A socket on which the kernel tells of devices. It needs no privilege. None when it cannot be had. */
TLXX_EXPORT TLX::Linux::CDescriptor openUeventSocket();

} // namespace TLXX::Linux
