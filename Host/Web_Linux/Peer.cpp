#include "Web_Linux/Peer.h"

#include <algorithm>
#include <cerrno>

#include <grp.h>
#include <sys/socket.h>

namespace Host::Web {
namespace {

constexpr std::size_t FIRST_GROUP_BUFFER = 1024;
constexpr std::size_t LARGEST_GROUP_BUFFER = std::size_t{1024} * 1024;

/** The supplementary groups. Nothing when the system does not tell. */
std::optional<std::vector<gid_t>> groupsOf(int socket)
{
    std::vector<gid_t> groups(32);
    for (;;) {
        auto size = static_cast<socklen_t>(groups.size() * sizeof(gid_t));
        const bool told = ::getsockopt(socket, SOL_SOCKET, SO_PEERGROUPS, groups.data(), &size) == 0;
        if (!told && errno != ERANGE)
            return std::nullopt;
        groups.resize(size / sizeof(gid_t));
        if (told)
            return groups;
    }
}

} // namespace

std::optional<Peer> peerOf(int socket)
{
    ucred credentials{};
    socklen_t size = sizeof credentials;
    if (::getsockopt(socket, SOL_SOCKET, SO_PEERCRED, &credentials, &size) != 0)
        return std::nullopt;
    auto groups = groupsOf(socket);
    if (!groups)
        return std::nullopt;
    groups->push_back(credentials.gid);
    return Peer{credentials.uid, std::move(*groups)};
}

bool mayChange(const Peer& peer, uid_t own, std::optional<gid_t> group)
{
    return peer.m_User == 0 || peer.m_User == own ||
           (group && std::find(peer.m_Groups.begin(), peer.m_Groups.end(), *group) != peer.m_Groups.end());
}

std::optional<gid_t> findGroup(const char* name)
{
    std::vector<char> buffer(FIRST_GROUP_BUFFER);
    group entry{};
    group* found = nullptr;
    while (::getgrnam_r(name, &entry, buffer.data(), buffer.size(), &found) == ERANGE &&
           buffer.size() < LARGEST_GROUP_BUFFER)
        buffer.resize(buffer.size() * 2);
    return found == nullptr ? std::nullopt : std::optional(found->gr_gid);
}

} // namespace Host::Web
