#pragma once

#include "Web/Access.h"
#include "Web/Exchange.h"
#include "Web/Limits.h"
#include "Web/Server.h"
#include "Web/Sockets.h"

#include <boost/asio.hpp>

#include <array>
#include <chrono>
#include <cstddef>
#include <functional>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <utility>

// For the server's own sources, because the library is slow to compile.
namespace Host::Web {

namespace asio = boost::asio;
using boost::system::error_code;
// One type for sockets of TCP and local ones.
using Protocol = asio::generic::stream_protocol;
using Socket = Protocol::socket;

/** Who is at the other end of a connection. Each kind of caller has places of its own, so that no other kind
 * can take all of them. */
enum class Caller : unsigned char
{
    OverTcp,
    Local,   ///< at the local socket
    Trusted, ///< at the local socket, and may change something
};
constexpr std::size_t CALLERS = 3;

/** What a connection is counted as. */
enum class Place : unsigned char
{
    Ordinary,
    Stream,
    Refused, ///< beyond the limit of connections; it gets an answer that says so
};
constexpr std::size_t PLACES = 3;

/** One client. For the server's thread. */
class IConnection
{
public:
    virtual ~IConnection() = default;

    /** Waits for the first request, or refuses all of them. */
    virtual void start() = 0;

    /** Sends what is new, if this is a stream. */
    virtual void wake() = 0;

    /** Ends it at once, and removes it from the open ones. */
    virtual void close() = 0;
};

/** All connections of a server, and what they share. Only the server's thread uses it, unless a member says
 * something else. */
struct Connections
{
    Connections(const ServerSettings& settings, Handler handler)
        : m_Limits(settings.m_Limits),
          m_IsTrustedPeer(settings.m_IsTrustedPeer),
          m_Handler(std::move(handler))
    {}

    /** The address itself is a name, too, because a client that types it reaches nobody else. */
    void setAccess(AccessSettings access)
    {
        m_Access = std::move(access);
        m_Access.m_HostNames.push_back(m_OwnName);
    }

    /** How many connections there are of this kind. */
    std::size_t& count(Caller caller, Place place)
    {
        return m_Counts.at(static_cast<std::size_t>(caller)).at(static_cast<std::size_t>(place));
    }

    /** From any thread. */
    void addDuration(std::chrono::steady_clock::duration duration)
    {
        const std::scoped_lock guard(m_DurationsLock);
        m_Durations.add(std::chrono::duration<double>(duration).count());
    }

    AccessSettings m_Access;
    std::string m_OwnName; ///< the address where it listens
    const Limits m_Limits;
    const std::function<bool(Sockets::Native)> m_IsTrustedPeer;
    const Handler m_Handler;
    /** Answers come from other threads, perhaps after the end of the server. So they hold it weakly. */
    const std::shared_ptr<asio::io_context> m_Context = std::make_shared<asio::io_context>(1);
    std::set<std::shared_ptr<IConnection>> m_Open;
    std::array<std::array<std::size_t, PLACES>, CALLERS> m_Counts{};
    std::mutex m_DurationsLock;
    Cli::Histogram m_Durations;
};

/** A connection that counts as `place` and is not among the open ones yet. */
std::shared_ptr<IConnection> makeConnection(Connections& connections, Socket socket, Door door, Caller caller,
                                            Place place);

} // namespace Host::Web
