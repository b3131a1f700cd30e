#pragma once

#include <TLX/Linux/Descriptor.h>
#include <TLXX/DriveSource.h>
#include <TLXX/Linux/ReaderProtocol.h>

#include <cstdint>
#include <deque>
#include <functional>
#include <map>
#include <span>
#include <utility>
#include <vector>

namespace Host {

/** Makes a connection to a reader. Throws `std::system_error` when there is none now. */
using ConnectReader = std::function<TLX::Linux::CDescriptor()>;

/**
 * Asks drives through a reader. When a reader that has answered goes away, the next one is asked once for
 * what it owes, because the loss of a reader is no silence of drives. Otherwise all that is owed is answered
 * as failed (ECONNRESET). The next command then makes a new connection, but not sooner than a delay that
 * doubles from attempt to attempt. Commands fail at once until then.
 */
class ReaderClient : public TLXX::IDriveSource
{
public:
    /** Connects at the first command. Throws `std::system_error` when the system gives no event. */
    explicit ReaderClient(ConnectReader connect);
    ~ReaderClient() override;

    void Submit(const TLXX::CDriveAddress& drive, const std::vector<TLXX::CDriveCommand>& commands) override;
    std::optional<TLXX::CDriveAnswer> Wait(std::uint64_t until) override;
    void Wake() override;

private:
    /** A command with its bit in a request. */
    using Kind = std::pair<std::uint32_t, TLXX::CDriveCommand>;
    struct Request
    {
        TLXX::CDriveAddress m_Drive;
        TLXX::Linux::CReaderRequest m_Place; ///< where the drive is; the rest is not set
        std::vector<Kind> m_Owed;
        bool m_IsRepeated = false;
    };

    bool connected();
    void send(Request request);
    void flush();
    bool receive();
    void end();
    bool take(std::span<const std::uint8_t> packet);
    void fail(const TLXX::CDriveAddress& drive, const TLXX::CDriveCommand& command, std::uint32_t status);
    void fail(const Request& request, std::uint32_t status);
    void lose();
    void postpone();

    const ConnectReader m_Connect;
    const TLX::Linux::CDescriptor m_Wake;
    TLX::Linux::CDescriptor m_Connection;
    bool m_HasAnswered = false;                  ///< this connection
    std::map<std::uint64_t, Request> m_Requests; ///< that are owed something, by sequence number
    std::uint64_t m_LastSequence = 0;
    std::deque<TLXX::Linux::CReaderRequest> m_Unsent;
    std::deque<TLXX::CDriveAnswer> m_Answers;
    std::uint32_t m_Reason = 0;  ///< why there is no connection
    std::uint64_t m_RetryAt = 0; ///< in milliseconds of `TLX::Misc::monotonic`
    std::uint64_t m_Delay = 0;   ///< before the next attempt after this one, in milliseconds
};

} // namespace Host
