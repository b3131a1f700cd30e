#pragma once

#include <functional>
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

/**
 * Whether this process may change something: it is root's, it is of the user `own`, or it is in the group
 * that `findGroup` knows as "ostrel".
 */
bool mayChange(const Peer& peer, uid_t own,
               const std::function<std::optional<gid_t>(const char*)>& findGroup);

/** The number of a group of this machine. */
std::optional<gid_t> findGroup(const char* name);

} // namespace Host::Web
