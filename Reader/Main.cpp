#include "MachineDrive.h"
#include "Restrictions.h"
#include "Server.h"

#include <TLXX/Linux/UeventAnnouncements.h>

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <exception>
#include <string_view>
#include <system_error>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace {

using TLX::Linux::CDescriptor;

/** The first descriptor that a service manager hands over, and the one of a private reader. */
constexpr int HANDED_OVER = 3;
constexpr int BACKLOG = 128;

CDescriptor listenAt(std::string_view path)
{
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof address.sun_path)
        throw std::system_error(ENAMETOOLONG, std::generic_category(), "socket");
    path.copy(std::data(address.sun_path), path.size());
    CDescriptor socket(::socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0));
    if (!socket.Valid() ||
        ::bind(socket.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
        ::listen(socket.Get(), BACKLOG) != 0)
        throw std::system_error(errno, std::generic_category(), "socket");
    return socket;
}

} // namespace

int main(int count, char** words)
{
    const bool hasPath = count == 3 && std::strcmp(words[1], "--socket") == 0;
    if (count != 1 && !hasPath) {
        (void)std::fputs("usage: ostrel-reader [--socket PATH]\n"
                         "Reads NVMe drives for others. Without a path, descriptor 3 is its socket.\n",
                         stderr);
        return 2;
    }
    try {
        CDescriptor socket = hasPath ? listenAt(words[2]) : CDescriptor(HANDED_OVER);
        Reader::Server server(std::move(socket), TLXX::Linux::openUeventSocket(), Reader::openMachineDrive);
        Reader::restrictProcess();
        server.run();
    } catch (const std::exception& error) {
        (void)std::fprintf(stderr, "ostrel-reader: %s\n", error.what());
        return 1;
    }
    // A thread may be stuck with a drive, and nothing here waits for it.
    ::_exit(0);
}
