#include "Web/Sockets.h"

#include "Base/Failure.h"

#include <windows.h>
#include <winsock2.h>

namespace Host::Web::Sockets {
namespace {

void setOption(Native socket, int level, int option)
{
    const BOOL value = TRUE;
    (void)::setsockopt(socket, level, option, reinterpret_cast<const char*>(&value), sizeof value);
}

} // namespace

Native listenLocally(const std::filesystem::path&)
{
    throw Failure(ExitCode::WrongUsage, "There is no local socket on Windows.");
}

std::vector<Native> handedOver()
{
    return {};
}

void prepareListener(Native socket)
{
    setOption(socket, SOL_SOCKET, SO_EXCLUSIVEADDRUSE);
}

void prepareConnection(Native socket)
{
    setOption(socket, IPPROTO_TCP, TCP_NODELAY);
}

std::function<bool(Native)> trustedPeers()
{
    return [](Native) { return false; };
}

} // namespace Host::Web::Sockets
