#pragma once

#include "Drives.h"

#include <TLX/Linux/Descriptor.h>
#include <TLXX/Linux/ReaderProtocol.h>

#include <cstddef>
#include <cstdint>
#include <deque>
#include <optional>
#include <span>
#include <vector>

namespace Reader {

/** The connection of one client. It never blocks: what a client does not read yet waits here. */
class Client
{
public:
    /** `connection` is a non-blocking socket of type SOCK_SEQPACKET. */
    explicit Client(TLX::Linux::CDescriptor connection);

    /** What has come of the next packet. */
    struct Received
    {
        enum class What : std::uint8_t
        {
            nothing,
            request,
            refused, ///< it is no request; the client has been told
            end      ///< the client has gone
        };
        What m_What = What::nothing;
        TLXX::Linux::CReaderRequest m_Request;
    };
    Received receive();

    /** Queues an answer and sends what can be sent. */
    void answer(std::uint64_t sequence, std::uint32_t kind, const Answer& answer);

    /** Sends what can be sent. Returns false when the client has gone. */
    bool flush();

    /** Counts commands whose answer is owed. */
    void owe(std::size_t commands) { m_Owed += commands; }

    /** Whether another request may be read: the client reads its answers and is not owed too many. */
    bool mayAsk() const;

    bool hasUnsent() const { return !m_Unsent.empty(); }
    /** Bytes that wait to be sent. */
    std::size_t unsent() const { return m_UnsentBytes; }
    int descriptor() const { return m_Connection.Get(); }

private:
    struct Packet
    {
        TLXX::Linux::CReaderAnswer m_Head;
        std::shared_ptr<const std::vector<std::uint8_t>> m_Block;
    };

    void queue(const TLXX::Linux::CReaderAnswer& head,
               std::shared_ptr<const std::vector<std::uint8_t>> block);
    bool send(const Packet& packet);

    TLX::Linux::CDescriptor m_Connection;
    std::deque<Packet> m_Unsent;
    std::size_t m_UnsentBytes = 0;
    std::size_t m_Owed = 0;
    bool m_Gone = false;
};

} // namespace Reader
