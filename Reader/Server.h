#pragma once

#include "Client.h"
#include "Drives.h"

#include <TLX/Linux/Descriptor.h>

#include <cstddef>
#include <cstdint>
#include <map>
#include <vector>

#include <poll.h>

namespace Reader {

/** Clients that are served at a time. A further one is disconnected at once. */
inline constexpr std::size_t MOST_CLIENTS = 512;

/** Answers the requests of all clients in one loop, on one thread, and never waits for any of them. */
class Server
{
public:
    /**
     * `socket` listens for clients, or is the connection of the only one. `announcements` is a socket of
     * `TLXX::Linux::openUeventSocket`; it may own none. Throws `std::system_error`.
     */
    Server(TLX::Linux::CDescriptor socket, TLX::Linux::CDescriptor announcements, OpenDrive open);

    /** Serves until the only client has gone, or until `stop`. Throws `std::system_error`. */
    void run();

    /** Ends `run`. Safe from any thread. */
    void stop() const;

private:
    std::vector<pollfd> watched() const;
    int patience() const;
    void handle(const std::vector<pollfd>& watched);
    void accept();
    void adopt(TLX::Linux::CDescriptor connection);
    void serve(std::uint64_t number, Client& client, short happened);
    bool receive(std::uint64_t number, Client& client);
    void ask(std::uint64_t number, Client& client, const TLXX::Linux::CReaderRequest& request);
    void deliver();
    void relieve();
    void growIfNeeded();
    void drop(std::uint64_t number);

    TLX::Linux::CDescriptor m_Listener; ///< none with a single client
    TLX::Linux::CDescriptor m_Announcements;
    TLX::Linux::CDescriptor m_Wake;
    TLX::Linux::CDescriptor m_Stop;
    std::map<std::uint64_t, Client> m_Clients; ///< by a number that is never used again
    std::uint64_t m_LastNumber = 0;
    std::uint64_t m_GrowAt = 0; ///< when jobs have waited long enough for more threads; 0: none waits
    bool m_Exhausted = false;   ///< no connection could be accepted for lack of descriptors or memory
    Drives m_Drives;
};

} // namespace Reader
