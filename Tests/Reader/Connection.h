#pragma once

#include <TLX/Linux/Descriptor.h>
#include <TLXX/Linux/ReaderProtocol.h>

#include <gtest/gtest.h>

#include <array>
#include <cerrno>
#include <cstring>
#include <optional>
#include <span>
#include <string>
#include <vector>

#include <poll.h>
#include <sys/socket.h>
#include <sys/un.h>

namespace ReaderTest {

using TLX::Linux::CDescriptor;

/** Longer than any answer takes, in milliseconds. */
inline constexpr int PATIENCE = 60'000;

/** The two ends of a connection. */
inline std::array<CDescriptor, 2> connectedPair(int type = SOCK_SEQPACKET)
{
    std::array<int, 2> ends{};
    EXPECT_EQ(::socketpair(AF_UNIX, type | SOCK_CLOEXEC, 0, ends.data()), 0);
    return {CDescriptor(ends[0]), CDescriptor(ends[1])};
}

inline sockaddr_un addressOf(const std::string& path)
{
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path.copy(std::data(address.sun_path), sizeof address.sun_path - 1);
    return address;
}

/** The client's end of a connection. */
class Connection
{
public:
    explicit Connection(CDescriptor descriptor) : m_Descriptor(std::move(descriptor)) {}

    /** To the reader that listens at `path`. */
    explicit Connection(const std::string& path)
        : m_Descriptor(::socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0))
    {
        const sockaddr_un address = addressOf(path);
        EXPECT_EQ(::connect(m_Descriptor.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof address),
                  0);
    }

    void send(std::span<const std::uint8_t> packet) const
    {
        EXPECT_EQ(::send(m_Descriptor.Get(), packet.data(), packet.size(), MSG_NOSIGNAL),
                  static_cast<ssize_t>(packet.size()));
    }
    /** Returns whether there was room. */
    bool trySend(std::span<const std::uint8_t> packet) const
    {
        return ::send(m_Descriptor.Get(), packet.data(), packet.size(), MSG_NOSIGNAL | MSG_DONTWAIT) >= 0;
    }
    void send(const TLXX::Linux::CReaderRequest& request) const { send(TLXX::Linux::readerPacket(request)); }

    /** The next answer's packet; empty when the reader has closed the connection. */
    std::vector<std::uint8_t> receive() const
    {
        pollfd place = {m_Descriptor.Get(), POLLIN, 0};
        int happened = 0;
        do
            happened = ::poll(&place, 1, PATIENCE);
        while (happened < 0 && errno == EINTR);
        EXPECT_EQ(happened, 1) << "no answer came";
        std::vector<std::uint8_t> packet(TLXX::Linux::READER_PACKET + 1);
        const ssize_t size =
            place.revents == 0 ? 0 : ::recv(m_Descriptor.Get(), packet.data(), packet.size(), 0);
        packet.resize(size < 0 ? 0 : static_cast<std::size_t>(size));
        return packet;
    }

    /** The head of the next answer, which must be whole. */
    TLXX::Linux::CReaderAnswer answer() const
    {
        const auto packet = receive();
        const auto reply = TLXX::Linux::parseReaderReply(packet);
        EXPECT_TRUE(reply) << packet.size() << " bytes";
        return reply ? reply->m_Answer : TLXX::Linux::CReaderAnswer{};
    }

    int descriptor() const { return m_Descriptor.Get(); }

private:
    CDescriptor m_Descriptor;
};

/** Asks a controller to identify itself. */
inline TLXX::Linux::CReaderRequest identify(std::uint32_t controller, std::uint64_t sequence)
{
    TLXX::Linux::CReaderRequest request;
    request.m_Controller = controller;
    request.m_Node = 1;
    request.m_Sequence = sequence;
    request.m_Commands = TLXX::Linux::ReaderCommand::identifyController;
    return request;
}

/** Asks for a part of a log page. */
inline TLXX::Linux::CReaderRequest logPage(std::uint32_t controller, std::uint64_t sequence,
                                           std::uint32_t offset, std::uint32_t length)
{
    TLXX::Linux::CReaderRequest request = identify(controller, sequence);
    request.m_Commands = TLXX::Linux::ReaderCommand::firstLogPage;
    request.m_Offset = offset;
    request.m_Length = length;
    return request;
}

} // namespace ReaderTest
