#include "Client.h"

#include <array>
#include <cerrno>
#include <utility>

#include <sys/socket.h>
#include <sys/uio.h>

namespace Reader {
namespace {

using TLXX::Linux::CReaderAnswer;
using TLXX::Linux::CReaderRequest;

/** What a client that does not read its answers may have waiting before nothing more is read from it. */
constexpr std::size_t MOST_UNSENT = std::size_t{64} * 1024;
/** Commands that a client may wait for. */
constexpr std::size_t MOST_OWED = 4096;

} // namespace

Client::Client(TLX::Linux::CDescriptor connection) : m_Connection(std::move(connection)) {}

Client::Received Client::receive()
{
    // One byte more, which shows that a packet is too long.
    std::array<std::uint8_t, sizeof(CReaderRequest) + 1> packet{};
    ssize_t size = 0;
    do
        size = ::recv(m_Connection.Get(), packet.data(), packet.size(), MSG_DONTWAIT);
    while (size < 0 && errno == EINTR);
    if (size < 0 && errno == EAGAIN)
        return {};
    if (size <= 0)
        return {Received::What::end, {}};
    const auto bytes = std::span(packet).first(static_cast<std::size_t>(size));
    if (const auto request = TLXX::Linux::parseReaderRequest(bytes))
        return {Received::What::request, *request};
    queue({TLXX::Linux::readerSequence(bytes), 0, EINVAL, 0, 0}, nullptr);
    return {Received::What::refused, {}};
}

void Client::answer(std::uint64_t sequence, std::uint32_t kind, const Answer& answer)
{
    m_Owed -= m_Owed > 0 ? 1 : 0;
    const auto length = answer.m_Block ? static_cast<std::uint32_t>(answer.m_Block->size()) : 0;
    queue({sequence, kind, answer.m_Status, length, 0}, answer.m_Block);
}

void Client::queue(const CReaderAnswer& head, std::shared_ptr<const std::vector<std::uint8_t>> block)
{
    m_UnsentBytes += sizeof head + head.m_Length;
    m_Unsent.push_back({head, std::move(block)});
}

bool Client::send(const Packet& packet)
{
    auto head = TLXX::Linux::readerPacket(packet.m_Head);
    std::array<iovec, 2> parts = {{{head.data(), head.size()}, {}}};
    if (packet.m_Block)
        // The system only reads it.
        parts[1] = {const_cast<std::uint8_t*>(packet.m_Block->data()), packet.m_Block->size()};
    msghdr message{};
    message.msg_iov = parts.data();
    message.msg_iovlen = packet.m_Block ? 2 : 1;
    ssize_t sent = 0;
    do
        sent = ::sendmsg(m_Connection.Get(), &message, MSG_DONTWAIT | MSG_NOSIGNAL);
    while (sent < 0 && errno == EINTR);
    const bool mayCome = sent < 0 && (errno == EAGAIN || errno == ENOBUFS || errno == ENOMEM);
    m_Gone = sent < 0 && !mayCome;
    return sent >= 0;
}

bool Client::flush()
{
    while (!m_Unsent.empty() && send(m_Unsent.front())) {
        m_UnsentBytes -= sizeof(CReaderAnswer) + m_Unsent.front().m_Head.m_Length;
        m_Unsent.pop_front();
    }
    return !m_Gone;
}

bool Client::mayAsk() const
{
    return m_UnsentBytes < MOST_UNSENT && m_Owed < MOST_OWED;
}

} // namespace Reader
