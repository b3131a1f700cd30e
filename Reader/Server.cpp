#include "Server.h"

#include <TLX/Clock.h>
#include <TLXX/Linux/UeventAnnouncements.h>

#include <algorithm>
#include <bit>
#include <cerrno>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <sys/eventfd.h>
#include <sys/socket.h>

namespace Reader {
namespace {

using TLX::Linux::CDescriptor;
using TLXX::Linux::CReaderRequest;

/** Requests that are read from one client before the others have their turn. */
constexpr int TURN = 16;
/** Bytes that may wait for all clients together. Above it, the one that reads least has to go. */
constexpr std::size_t MOST_UNSENT_BYTES = std::size_t{8} * 1024 * 1024;
/** The buffer of a connection in the kernel, in bytes. */
constexpr int SEND_BUFFER = 64 * 1024;
/** How often is looked whether more threads are needed, and for answers, in milliseconds. */
constexpr int LOOK_PERIOD = 10;
/** How long no connection is accepted after descriptors or memory ran out, in milliseconds. */
constexpr int RECOVERY = 100;

CDescriptor newEvent()
{
    CDescriptor event(::eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC));
    if (!event.Valid())
        throw std::system_error(errno, std::generic_category(), "eventfd");
    return event;
}

int socketOption(int socket, int option)
{
    int value = 0;
    socklen_t size = sizeof value;
    if (::getsockopt(socket, SOL_SOCKET, option, &value, &size) != 0)
        throw std::system_error(errno, std::generic_category(), "socket");
    return value;
}

void makeNonBlocking(int socket)
{
    if (::fcntl(socket, F_SETFL, ::fcntl(socket, F_GETFL) | O_NONBLOCK) != 0)
        throw std::system_error(errno, std::generic_category(), "socket");
}

// The places in what is watched; those of the clients follow.
enum Place : std::size_t
{
    STOP,
    ANNOUNCEMENTS,
    WAKE,
    LISTENER,
    FIRST_CLIENT
};

} // namespace

Server::Server(CDescriptor socket, CDescriptor announcements, OpenDrive open)
    : m_Announcements(std::move(announcements)),
      m_Wake(newEvent()),
      m_Stop(newEvent()),
      m_Drives(std::move(open), [wake = m_Wake.Get()] { (void)::eventfd_write(wake, 1); })
{
    if (socketOption(socket.Get(), SO_TYPE) != SOCK_SEQPACKET)
        throw std::system_error(EPROTOTYPE, std::generic_category(), "socket");
    makeNonBlocking(socket.Get());
    if (socketOption(socket.Get(), SO_ACCEPTCONN) != 0)
        m_Listener = std::move(socket);
    else
        adopt(std::move(socket));
}

void Server::run()
{
    while (m_Listener.Valid() || !m_Clients.empty()) {
        std::vector<pollfd> places = watched();
        const int happened = ::poll(places.data(), places.size(), patience());
        if (happened < 0) {
            if (errno != EINTR)
                throw std::system_error(errno, std::generic_category(), "poll");
            continue;
        }
        if (happened == 0)
            m_Drives.hurry();
        if (places[STOP].revents != 0)
            return;
        handle(places);
    }
}

void Server::stop() const
{
    (void)::eventfd_write(m_Stop.Get(), 1);
}

std::vector<pollfd> Server::watched() const
{
    std::vector<pollfd> places;
    places.reserve(FIRST_CLIENT + m_Clients.size());
    places.push_back({m_Stop.Get(), POLLIN, 0});
    places.push_back({m_Announcements.Valid() ? m_Announcements.Get() : -1, POLLIN, 0});
    places.push_back({m_Wake.Get(), POLLIN, 0});
    places.push_back({m_Listener.Valid() && !m_Exhausted ? m_Listener.Get() : -1, POLLIN, 0});
    for (const auto& [number, client] : m_Clients) {
        const int events = (client.mayAsk() ? POLLIN : 0) | (client.hasUnsent() ? POLLOUT : 0);
        places.push_back({client.descriptor(), static_cast<short>(events), 0});
    }
    return places;
}

int Server::patience() const
{
    if (m_Drives.waiting() || m_Drives.mayHaveMore())
        return LOOK_PERIOD;
    return m_Exhausted ? RECOVERY : -1;
}

void Server::handle(const std::vector<pollfd>& watched)
{
    m_Exhausted = false;
    // First of all, so that no request of this turn gets an answer from before.
    if (watched[ANNOUNCEMENTS].revents != 0 &&
        !TLXX::Linux::readAnnouncements(m_Announcements.Get(), [this] { m_Drives.doubt(); })) {
        m_Drives.doubt();
        m_Announcements = {};
    }
    if (watched[WAKE].revents != 0) {
        eventfd_t count = 0;
        (void)::eventfd_read(m_Wake.Get(), &count);
    }
    std::size_t place = FIRST_CLIENT;
    // A client that leaves is removed from the map during this loop.
    for (auto next = m_Clients.begin(); next != m_Clients.end() && place < watched.size(); ++place) {
        const auto client = next++;
        if (watched[place].revents != 0)
            serve(client->first, client->second, watched[place].revents);
    }
    if (watched[LISTENER].revents != 0)
        accept();
    deliver();
    growIfNeeded();
}

void Server::growIfNeeded()
{
    if (!m_Drives.waiting()) {
        m_GrowAt = 0;
        return;
    }
    const std::uint64_t now = TLX::Misc::monotonic();
    if (m_GrowAt != 0 && now < m_GrowAt)
        return;
    if (m_GrowAt != 0)
        m_Drives.grow();
    m_GrowAt = now + LOOK_PERIOD;
}

void Server::accept()
{
    for (;;) {
        CDescriptor connection(::accept4(m_Listener.Get(), nullptr, nullptr, SOCK_CLOEXEC | SOCK_NONBLOCK));
        if (!connection.Valid()) {
            m_Exhausted = errno == EMFILE || errno == ENFILE || errno == ENOBUFS || errno == ENOMEM;
            return;
        }
        if (m_Clients.size() < MOST_CLIENTS)
            adopt(std::move(connection));
    }
}

void Server::adopt(CDescriptor connection)
{
    (void)::setsockopt(connection.Get(), SOL_SOCKET, SO_SNDBUF, &SEND_BUFFER, sizeof SEND_BUFFER);
    m_Clients.try_emplace(++m_LastNumber, std::move(connection));
}

void Server::serve(std::uint64_t number, Client& client, short happened)
{
    const bool isThere = client.mayAsk() ? receive(number, client)
                                         : (static_cast<unsigned>(happened) & (POLLHUP | POLLERR)) == 0;
    if (!isThere || !client.flush())
        drop(number);
}

bool Server::receive(std::uint64_t number, Client& client)
{
    for (int i = 0; i < TURN && client.mayAsk(); ++i) {
        const Client::Received received = client.receive();
        switch (received.m_What) {
        case Client::Received::What::nothing:
            return true;
        case Client::Received::What::end:
            return false;
        case Client::Received::What::request:
            ask(number, client, received.m_Request);
            break;
        case Client::Received::What::refused:
            break;
        }
    }
    return true;
}

void Server::ask(std::uint64_t number, Client& client, const CReaderRequest& request)
{
    client.owe(static_cast<std::size_t>(std::popcount(request.m_Commands)));
    std::vector<Command> commands;
    for (std::uint32_t kinds = request.m_Commands; kinds != 0; kinds &= kinds - 1) {
        const std::uint32_t kind = kinds & -kinds;
        const bool isLogPage = kind >= TLXX::Linux::ReaderCommand::firstLogPage;
        const bool isOfNamespace = kind == TLXX::Linux::ReaderCommand::identifyNamespace;
        commands.push_back({{request.m_Controller, request.m_Node},
                            kind,
                            isOfNamespace ? request.m_NamespaceId : 0,
                            isLogPage ? request.m_Offset : 0,
                            TLXX::Linux::readerLength(request, kind)});
    }
    m_Drives.ask(commands, {number, request.m_Sequence});
}

void Server::deliver()
{
    for (const Delivery& delivery : m_Drives.take()) {
        const auto client = m_Clients.find(delivery.m_Asker.m_Client);
        if (client == m_Clients.end())
            continue;
        client->second.answer(delivery.m_Asker.m_Sequence, delivery.m_Kind, delivery.m_Answer);
        if (!client->second.flush())
            drop(client->first);
    }
    relieve();
}

void Server::relieve()
{
    std::size_t all = 0;
    for (const auto& [number, client] : m_Clients)
        all += client.unsent();
    while (all > MOST_UNSENT_BYTES) {
        const auto most =
            std::max_element(m_Clients.begin(), m_Clients.end(), [](const auto& left, const auto& right) {
                return left.second.unsent() < right.second.unsent();
            });
        all -= most->second.unsent();
        drop(most->first);
    }
}

void Server::drop(std::uint64_t number)
{
    m_Clients.erase(number);
    m_Drives.forget(number);
}

} // namespace Reader
