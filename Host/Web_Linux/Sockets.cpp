#include "Web/Sockets.h"

#include "Base/Failure.h"
#include "Base/Text.h"
#include "Web_Linux/LocalAddress.h"
#include "Web_Linux/Peer.h"

#include <TLX/Linux/Descriptor.h>

#include <cerrno>
#include <cstdlib>
#include <system_error>

#include <fcntl.h>
#include <netinet/in.h>
#include <netinet/tcp.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <unistd.h>

namespace Host::Web::Sockets {
namespace {

using TLX::Linux::CDescriptor;

/** The first descriptor that a service manager hands over. */
constexpr int FIRST_HANDED_OVER = 3;
/** How long what was sent may stay unacknowledged, in milliseconds. */
constexpr int MOST_UNACKNOWLEDGED = 30'000;
constexpr mode_t FOR_EVERYONE = 0666;

[[noreturn]] void fail(const std::filesystem::path& path, const std::string& reason)
{
    throw Failure(ExitCode::RequestFailed, "Cannot listen on " + path.string() + ": " + reason + ".");
}

[[noreturn]] void fail(const std::filesystem::path& path, int error)
{
    fail(path, std::generic_category().message(error));
}

CDescriptor localSocket()
{
    return CDescriptor(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
}

/** Removes what a former process left. A socket on which a process listens stays. */
void removeFormer(const std::filesystem::path& path, const LocalAddress& address)
{
    if (!std::filesystem::is_socket(path))
        return;
    const CDescriptor attempt = localSocket();
    if (::connect(attempt.Get(), address.get(), address.size()) == 0)
        fail(path, "another process listens there");
    if (errno == ECONNREFUSED)
        (void)::unlink(path.c_str());
}

void setOption(Native socket, int level, int option, int value)
{
    // What the system does not know is left out.
    (void)::setsockopt(static_cast<int>(socket), level, option, &value, sizeof value);
}

/** The number that an environment variable has. Only the first call finds it. */
std::uint64_t takeNumber(const char* variable)
{
    const char* text = std::getenv(variable);
    const std::uint64_t number = text == nullptr ? 0 : parseNumber(text, 10).value_or(0);
    (void)::unsetenv(variable);
    return number;
}

} // namespace

Native listenLocally(const std::filesystem::path& path)
{
    const LocalAddress address(path);
    removeFormer(path, address);
    CDescriptor socket = localSocket();
    if (!socket.Valid() || ::bind(socket.Get(), address.get(), address.size()) != 0)
        fail(path, errno);
    if (::chmod(path.c_str(), FOR_EVERYONE) != 0 || ::listen(socket.Get(), SOMAXCONN) != 0) {
        const int error = errno;
        (void)::unlink(path.c_str());
        fail(path, error);
    }
    return static_cast<Native>(socket.Release());
}

std::vector<Native> handedOver()
{
    const std::uint64_t process = takeNumber("LISTEN_PID");
    const std::uint64_t count = takeNumber("LISTEN_FDS");
    std::vector<Native> sockets;
    if (process != static_cast<std::uint64_t>(::getpid()))
        return sockets;
    for (std::uint64_t i = 0; i < count; ++i) {
        const int descriptor = FIRST_HANDED_OVER + static_cast<int>(i);
        (void)::fcntl(descriptor, F_SETFD, FD_CLOEXEC);
        sockets.push_back(static_cast<Native>(descriptor));
    }
    return sockets;
}

void prepareListener(Native socket)
{
    setOption(socket, SOL_SOCKET, SO_REUSEADDR, 1);
}

void prepareConnection(Native socket)
{
    setOption(socket, IPPROTO_TCP, TCP_NODELAY, 1);
    setOption(socket, IPPROTO_TCP, TCP_USER_TIMEOUT, MOST_UNACKNOWLEDGED);
}

std::function<bool(Native)> trustedPeers()
{
    return [own = ::geteuid(), group = findGroup("ostrel")](Native socket) {
        const std::optional<Peer> peer = peerOf(static_cast<int>(socket));
        return peer && mayChange(*peer, own, group);
    };
}

} // namespace Host::Web::Sockets
