#include "Host/Web_Linux/RawClient.h"

#include "Base/Text.h"
#include "Web_Linux/LocalAddress.h"

#include <array>
#include <cerrno>
#include <stdexcept>
#include <system_error>

#include <arpa/inet.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>

namespace HostTest {
namespace {

constexpr int MOST_PATIENCE = 600'000; // milliseconds

TLX::Linux::CDescriptor connected(const sockaddr* address, socklen_t size)
{
    TLX::Linux::CDescriptor socket(::socket(address->sa_family, SOCK_STREAM | SOCK_CLOEXEC, 0));
    if (::connect(socket.Get(), address, size) != 0)
        throw std::system_error(errno, std::generic_category(), "connect");
    return socket;
}

TLX::Linux::CDescriptor connectedTo(const std::string& url)
{
    const std::size_t colon = url.rfind(':');
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(static_cast<std::uint16_t>(std::stoi(url.substr(colon + 1))));
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    return connected(reinterpret_cast<const sockaddr*>(&address), sizeof address);
}

TLX::Linux::CDescriptor connectedTo(const std::filesystem::path& path)
{
    const Host::Web::LocalAddress address(path);
    return connected(address.get(), address.size());
}

} // namespace

RawClient::RawClient(const std::string& url) : m_Socket(connectedTo(url)) {}

RawClient::RawClient(const std::filesystem::path& socket) : m_Socket(connectedTo(socket)) {}

bool RawClient::send(std::string_view text) const
{
    while (!text.empty()) {
        const ssize_t sent = ::send(m_Socket.Get(), text.data(), text.size(), MSG_NOSIGNAL);
        if (sent <= 0)
            return false;
        text.remove_prefix(static_cast<std::size_t>(sent));
    }
    return true;
}

bool RawClient::readMore()
{
    pollfd entry{m_Socket.Get(), POLLIN, 0};
    if (::poll(&entry, 1, MOST_PATIENCE) != 1)
        throw std::runtime_error("the server says nothing");
    std::array<char, 16384> piece{};
    const ssize_t size = ::recv(m_Socket.Get(), piece.data(), piece.size(), 0);
    if (size > 0)
        m_Read.append(piece.data(), static_cast<std::size_t>(size));
    return size > 0;
}

std::string RawClient::receiveUntil(std::string_view text)
{
    std::size_t found = 0;
    while ((found = m_Read.find(text)) == std::string::npos && readMore())
        continue;
    const std::size_t size = found == std::string::npos ? m_Read.size() : found + text.size();
    std::string result = m_Read.substr(0, size);
    m_Read.erase(0, size);
    return result;
}

RawAnswer RawClient::receive(bool isHeadAlone)
{
    const std::string head = receiveUntil("\r\n\r\n");
    RawAnswer answer;
    if (!head.starts_with("HTTP/1.1 "))
        return answer;
    answer.m_Status = static_cast<unsigned>(std::stoul(head.substr(9, 3)));
    for (std::size_t at = head.find("\r\n") + 2; at + 2 < head.size(); at = head.find("\r\n", at) + 2) {
        const std::string line = head.substr(at, head.find("\r\n", at) - at);
        const std::size_t colon = line.find(": ");
        answer.m_Headers[line.substr(0, colon)] = line.substr(colon + 2);
    }
    const auto length = answer.m_Headers.find("Content-Length");
    if (isHeadAlone || length == answer.m_Headers.end())
        return answer;
    const std::size_t size = std::stoul(length->second);
    while (m_Read.size() < size && readMore())
        continue;
    answer.m_Body = m_Read.substr(0, size);
    m_Read.erase(0, size);
    return answer;
}

std::string RawClient::receiveAll()
{
    while (readMore())
        continue;
    return std::exchange(m_Read, {});
}

bool RawClient::hasNews() const
{
    pollfd entry{m_Socket.Get(), POLLIN, 0};
    return !m_Read.empty() || ::poll(&entry, 1, 0) != 0;
}

void RawClient::endSending() const
{
    (void)::shutdown(m_Socket.Get(), SHUT_WR);
}

void RawClient::vanish()
{
    const linger reset{1, 0};
    (void)::setsockopt(m_Socket.Get(), SOL_SOCKET, SO_LINGER, &reset, sizeof reset);
    m_Socket = {};
}

std::string rawRequest(std::string_view path, std::string_view fields, std::string_view method)
{
    return std::string(method) + ' ' + std::string(path) + " HTTP/1.1\r\nHost: localhost\r\n" +
           std::string(fields) + "\r\n";
}

RawAnswer askOnce(const std::string& url, std::string_view path, std::string_view fields)
{
    RawClient client(url);
    client.send(rawRequest(path, fields));
    return client.receive();
}

} // namespace HostTest
