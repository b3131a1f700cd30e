#pragma once

#include <filesystem>

#include <sys/socket.h>
#include <sys/un.h>

namespace Host::Web {

/** The address of a local socket, as the system takes it. */
class LocalAddress
{
public:
    /** Throws `Failure` when the path is too long for a socket. */
    explicit LocalAddress(const std::filesystem::path& path);

    const sockaddr* get() const { return reinterpret_cast<const sockaddr*>(&m_Address); }
    socklen_t size() const { return sizeof m_Address; }

private:
    sockaddr_un m_Address{};
};

} // namespace Host::Web
