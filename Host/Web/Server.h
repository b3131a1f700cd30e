#pragma once

#include "Facts/Histogram.h"
#include "Web/Access.h"
#include "Web/Exchange.h"
#include "Web/Limits.h"
#include "Web/Sockets.h"

#include <cstdint>
#include <filesystem>
#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace Host::Web {

struct ServerSettings
{
    std::string m_Address = "127.0.0.1"; ///< a number, no name
    std::uint16_t m_Port = 9713;         ///< 0 picks one
    std::filesystem::path m_LocalSocket; ///< is made at the start and removed at the end; empty: none
    /** Local sockets that already listen, from the service manager. The server closes them. */
    std::vector<Sockets::Native> m_HandedOver;
    AccessSettings m_Access;
    Limits m_Limits;
    std::function<bool(Sockets::Native)> m_IsTrustedPeer = Sockets::trustedPeers();
};

/** Answers requests over HTTP/1.1 on a thread of its own. Safe from any thread. */
class Server
{
public:
    /**
     * Listens from now on. Throws `Failure` when it cannot, and when another address than loopback is asked
     * for without a token.
     */
    Server(const ServerSettings& settings, Handler handler);
    ~Server();
    Server(const Server&) = delete;
    Server& operator=(const Server&) = delete;

    /** Where it listens, such as "http://127.0.0.1:9713". */
    std::string url() const;

    /** Lets each stream look for something new. */
    void wake();

    /** These hold for the requests from now on. */
    void change(AccessSettings settings);

    /** Calls `function` on the server's thread, if that still runs. It must not wait and not throw. */
    void post(std::function<void()> function);

    /** Ends all connections at once and returns. Nothing calls the handler after that. */
    void stop();

    /** From the end of a request until its answer was taken. Streams are not counted. */
    Cli::Histogram durations() const;

private:
    struct Native;
    std::unique_ptr<Native> m_Native;
};

} // namespace Host::Web
