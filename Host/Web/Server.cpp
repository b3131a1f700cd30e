#include "Web/Server.h"

#include "Base/Failure.h"
#include "Web/Connection.h"

#include <algorithm>
#include <atomic>
#include <cstring>
#include <exception>
#include <filesystem>
#include <system_error>
#include <thread>
#include <vector>

namespace Host::Web {
namespace {

using Acceptor = asio::basic_socket_acceptor<Protocol>;
using asio::ip::tcp;
using std::chrono::milliseconds;

/** Further connections beyond the limit are closed without an answer. */
constexpr std::size_t MOST_REFUSED = 16;
constexpr milliseconds PAUSE_AFTER_FAILED_ACCEPT{100};

/** Where clients come in. */
class Listener
{
public:
    Listener(Connections& shared, Acceptor acceptor, Door door)
        : m_Shared(shared), m_Acceptor(std::move(acceptor)), m_Pause(m_Acceptor.get_executor()), m_Door(door)
    {}

    void accept()
    {
        m_Acceptor.async_accept([this](error_code error, Socket socket) {
            // A client may have come just before the end.
            if (!m_Acceptor.is_open())
                return;
            if (!error)
                receive(std::move(socket));
            if (error)
                acceptLater();
            else
                accept();
        });
    }

    void close()
    {
        error_code ignored;
        m_Pause.cancel();
        m_Acceptor.close(ignored);
    }

    Protocol::endpoint endpoint() const { return m_Acceptor.local_endpoint(); }

private:
    /** The system has no more descriptors, for example. Another attempt at once would fail again. */
    void acceptLater()
    {
        m_Pause.expires_after(PAUSE_AFTER_FAILED_ACCEPT);
        m_Pause.async_wait([this](error_code) {
            if (m_Acceptor.is_open())
                accept();
        });
    }

    Caller callerAt(Socket& socket) const
    {
        if (m_Door != Door::Local)
            return Caller::OverTcp;
        const auto native = static_cast<Sockets::Native>(socket.native_handle());
        return m_Shared.m_IsTrustedPeer(native) ? Caller::Trusted : Caller::Local;
    }

    void receive(Socket socket)
    {
        try {
            const Caller caller = callerAt(socket);
            Place place = Place::Ordinary;
            if (m_Shared.count(caller, place) >= m_Shared.m_Limits.m_Connections)
                place = Place::Refused;
            if (place == Place::Refused && m_Shared.count(caller, place) >= MOST_REFUSED)
                return;
            const auto connection = makeConnection(m_Shared, std::move(socket), m_Door, caller, place);
            m_Shared.m_Open.insert(connection);
            connection->start();
        } catch (const std::exception&) {
            // No memory for this client. Others must still come in.
            return;
        }
    }

    Connections& m_Shared;
    Acceptor m_Acceptor;
    asio::steady_timer m_Pause;
    const Door m_Door;
};

tcp::endpoint tcpEndpoint(const Protocol::endpoint& endpoint)
{
    tcp::endpoint result;
    std::memcpy(result.data(), endpoint.data(), std::min(endpoint.size(), result.capacity()));
    return result;
}

/** As it is written in the address of a page. */
std::string hostText(const asio::ip::address& address)
{
    return address.is_v6() ? "[" + address.to_string() + "]" : address.to_string();
}

std::string placeText(const tcp::endpoint& endpoint)
{
    return hostText(endpoint.address()) + ":" + std::to_string(endpoint.port());
}

asio::ip::address addressOf(const std::string& text)
{
    error_code error;
    auto address = asio::ip::make_address(text, error);
    if (error)
        throw Failure(ExitCode::WrongUsage, "\"" + text + "\" is no IP address, such as 127.0.0.1.");
    return address;
}

Acceptor listenOn(asio::io_context& context, const tcp::endpoint& endpoint)
{
    try {
        Acceptor acceptor(context);
        acceptor.open(Protocol(endpoint.protocol()));
        Sockets::prepareListener(static_cast<Sockets::Native>(acceptor.native_handle()));
        acceptor.bind(Protocol::endpoint(endpoint));
        acceptor.listen();
        return acceptor;
    } catch (const boost::system::system_error& error) {
        throw Failure(ExitCode::RequestFailed,
                      "Cannot listen on " + placeText(endpoint) + ": " + error.code().message() + ".");
    }
}

} // namespace

struct Server::Native
{
    Native(const ServerSettings& settings, Handler handler) : m_Shared(settings, std::move(handler))
    {
        listenOnTcp(settings);
        for (const Sockets::Native socket : settings.m_HandedOver)
            listenLocally(socket);
        if (!settings.m_LocalSocket.empty()) {
            listenLocally(Sockets::listenLocally(settings.m_LocalSocket));
            m_LocalSocket = settings.m_LocalSocket;
        }
    }

    void listenOnTcp(const ServerSettings& settings)
    {
        const auto address = addressOf(settings.m_Address);
        if (!address.is_loopback() && settings.m_Access.m_Token.empty())
            throw Failure(ExitCode::WrongUsage,
                          "To listen on " + settings.m_Address +
                              " needs a token, because other machines reach this address.");
        add(listenOn(*m_Shared.m_Context, {address, settings.m_Port}),
            address.is_loopback() ? Door::Loopback : Door::Network);
        m_Place = placeText(tcpEndpoint(m_Listeners.back()->endpoint()));
        m_Shared.m_OwnName = hostText(address);
        m_Shared.setAccess(settings.m_Access);
    }

    void listenLocally(Sockets::Native socket)
    {
        Acceptor acceptor(*m_Shared.m_Context);
        acceptor.assign(Protocol(AF_UNIX, 0), static_cast<Acceptor::native_handle_type>(socket));
        add(std::move(acceptor), Door::Local);
    }

    void add(Acceptor acceptor, Door door)
    {
        m_Listeners.push_back(std::make_unique<Listener>(m_Shared, std::move(acceptor), door));
    }

    void run()
    {
        for (const auto& listener : m_Listeners)
            listener->accept();
        for (;;)
            try {
                m_Shared.m_Context->run();
                return;
            } catch (const std::exception&) {
                // No memory for one step of one connection. The limits of time end that connection.
                continue;
            }
    }

    template<typename Each>
    void forEachConnection(Each each)
    {
        const auto connections = m_Shared.m_Open; // `each` may remove one
        for (const auto& connection : connections)
            each(*connection);
    }

    void close()
    {
        for (const auto& listener : m_Listeners)
            listener->close();
        forEachConnection([](IConnection& connection) { connection.close(); });
        m_Work.reset();
    }

    Connections m_Shared;
    asio::executor_work_guard<asio::io_context::executor_type> m_Work{m_Shared.m_Context->get_executor()};
    std::vector<std::unique_ptr<Listener>> m_Listeners;
    std::filesystem::path m_LocalSocket;
    std::string m_Place;
    std::atomic<bool> m_IsWoken = false;
    std::mutex m_StopLock;
    std::thread m_Thread;
};

Server::Server(const ServerSettings& settings, Handler handler)
    : m_Native(std::make_unique<Native>(settings, std::move(handler)))
{
    m_Native->m_Thread = std::thread([this] { m_Native->run(); });
}

Server::~Server()
{
    stop();
}

std::string Server::url() const
{
    return "http://" + m_Native->m_Place;
}

void Server::wake()
{
    if (m_Native->m_IsWoken.exchange(true))
        return;
    asio::post(*m_Native->m_Shared.m_Context, [native = m_Native.get()] {
        native->m_IsWoken = false;
        native->forEachConnection([](IConnection& connection) { connection.wake(); });
    });
}

void Server::change(AccessSettings settings)
{
    asio::post(*m_Native->m_Shared.m_Context, [native = m_Native.get(), settings = std::move(settings)] {
        native->m_Shared.setAccess(settings);
    });
}

void Server::post(std::function<void()> function)
{
    asio::post(*m_Native->m_Shared.m_Context, std::move(function));
}

void Server::stop()
{
    const std::scoped_lock guard(m_Native->m_StopLock);
    if (!m_Native->m_Thread.joinable())
        return;
    asio::post(*m_Native->m_Shared.m_Context, [native = m_Native.get()] { native->close(); });
    m_Native->m_Thread.join();
    if (!m_Native->m_LocalSocket.empty()) {
        std::error_code ignored;
        std::filesystem::remove(m_Native->m_LocalSocket, ignored);
    }
}

Cli::Histogram Server::durations() const
{
    const std::scoped_lock guard(m_Native->m_Shared.m_DurationsLock);
    return m_Native->m_Shared.m_Durations;
}

} // namespace Host::Web
