#pragma once

#include <cstdint>
#include <filesystem>
#include <functional>
#include <vector>

// What differs between the systems in the server's sockets. Each system has its own folder with an
// implementation of this header.
namespace Host::Web::Sockets {

/** The system's number of a socket. */
using Native = std::uintptr_t;

/**
 * Listens on a new local socket, which every local user may open. Replaces a file that a former process left.
 * Throws `Failure`.
 */
Native listenLocally(const std::filesystem::path& path);

/** The listening sockets that the service manager gave to this process. The next call returns none. */
std::vector<Native> handedOver();

/** Prepares a socket that will listen on TCP: no wait for the port after a restart, no stranger beside it. */
void prepareListener(Native socket);

/** Prepares a connection: small pieces are sent at once, a client that has vanished is noticed. */
void prepareConnection(Native socket);

/**
 * Tells of the caller at the other end of a local socket whether it may change something: root, the user of
 * this process and members of the group "ostrel". The group is looked up only now, because that may wait.
 */
std::function<bool(Native)> trustedPeers();

} // namespace Host::Web::Sockets
