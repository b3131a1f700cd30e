#include "Platform.h"

#include <TLXX/Linux/Uevent.h>
#include <TLXX/Linux/UeventAnnouncements.h>

#include <array>
#include <cerrno>
#include <cstdint>
#include <utility>

#include <fcntl.h>
#include <linux/netlink.h>
#include <linux/nsfs.h>
#include <sys/ioctl.h>
#include <sys/socket.h>
#include <sys/stat.h>

namespace TLXX::Linux {
namespace {

constexpr std::size_t LARGEST_MESSAGE = 8192; // a message of the kernel has at most 2048 bytes

union Sender {
    sockaddr m_Any;
    sockaddr_nl m_Netlink;
};

/** Other processes can also send to a netlink socket. */
bool isTrusted(const Sender& sender, socklen_t size)
{
    const bool netlink = size >= sizeof(sockaddr_nl) && sender.m_Any.sa_family == AF_NETLINK;
    return !netlink || sender.m_Netlink.nl_pid == 0;
}

/**
 * The kernel sends these messages only to network namespaces that belong to the first user namespace. The
 * system refuses to tell the owner if that is outside of this process's own user namespace.
 */
bool isAnnouncedHere()
{
    constexpr ino_t FIRST_USER_NAMESPACE = 0xEFFFFFFD; // part of the kernel's stable interface
    const TLX::Linux::CDescriptor network(::open("/proc/self/ns/net", O_RDONLY | O_CLOEXEC));
    const TLX::Linux::CDescriptor owner(network.Valid() ? ::ioctl(network.Get(), NS_GET_USERNS) : -1);
    struct stat status
    {};
    return !owner.Valid() || ::fstat(owner.Get(), &status) != 0 || status.st_ino == FIRST_USER_NAMESPACE;
}

} // namespace

TLX::Linux::CDescriptor openUeventSocket()
{
    if (!isAnnouncedHere())
        return {};
    TLX::Linux::CDescriptor socket(
        ::socket(AF_NETLINK, SOCK_DGRAM | SOCK_CLOEXEC | SOCK_NONBLOCK, NETLINK_KOBJECT_UEVENT));
    sockaddr_nl address{};
    address.nl_family = AF_NETLINK;
    address.nl_groups = 1; // messages of the kernel; group 2 is the device manager's
    if (socket.Valid() && ::bind(socket.Get(), reinterpret_cast<sockaddr*>(&address), sizeof address) != 0)
        return {};
    return socket;
}

CUeventAnnouncements::CUeventAnnouncements(TLX::Linux::CDescriptor messages, std::function<void()> announce)
    : m_Messages(std::move(messages)),
      m_Announce(std::move(announce)),
      m_Watch(m_Messages.Get(), [this] { return readAnnouncements(m_Messages.Get(), m_Announce); })
{}

bool readAnnouncements(int messages, const std::function<void()>& announce)
{
    std::array<char, LARGEST_MESSAGE> message{};
    for (;;) {
        Sender sender{};
        socklen_t senderSize = sizeof sender;
        const ssize_t size =
            ::recvfrom(messages, message.data(), message.size(), 0, &sender.m_Any, &senderSize);
        if (size > 0) {
            if (isTrusted(sender, senderSize) &&
                announcesDrives({message.data(), static_cast<std::size_t>(size)}))
                announce();
        } else if (size < 0 && errno == ENOBUFS) {
            // Messages were lost, and each of them may have concerned a drive.
            announce();
        } else if (size == 0 || (errno != EINTR))
            return size < 0 && errno == EAGAIN;
    }
}

} // namespace TLXX::Linux

namespace TLXX {

std::unique_ptr<IAnnouncements> Platform::subscribe(std::function<void()> announce)
{
    TLX::Linux::CDescriptor socket = Linux::openUeventSocket();
    if (!socket.Valid())
        return nullptr;
    return std::make_unique<Linux::CUeventAnnouncements>(std::move(socket), std::move(announce));
}

} // namespace TLXX
