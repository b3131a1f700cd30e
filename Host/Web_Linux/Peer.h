#pragma once

#include <optional>
#include <vector>

#include <sys/types.h>

namespace Host::Web {

/** The process at the other end of a local socket, as it was when it connected. */
struct Peer
{
    uid_t m_User = 0;
    std::vector<gid_t> m_Groups; ///< its own and the supplementary ones
};

/** Nothing when the system does not tell. */
std::optional<Peer> peerOf(int socket);

/** Whether this process may change something: it is root's, of the user `own`, or in the group. */
bool mayChange(const Peer& peer, uid_t own, std::optional<gid_t> group);

/** The number of a group of this machine. May wait for another machine that knows the groups. */
std::optional<gid_t> findGroup(const char* name);

} // namespace Host::Web
