#include "Web/Server.h"

#include "Base/Failure.h"
#include "Web/AnswerText.h"
#include "Web/Problem.h"
#include "Web/Target.h"

#include <boost/asio.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/http.hpp>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstring>
#include <mutex>
#include <optional>
#include <set>
#include <thread>
#include <utility>

namespace Host::Web {
namespace {

namespace asio = boost::asio;
namespace beast = boost::beast;
namespace http = boost::beast::http;
using boost::system::error_code;
// One type for sockets of TCP and local ones.
using Protocol = asio::generic::stream_protocol;
using Socket = Protocol::socket;
using Acceptor = asio::basic_socket_acceptor<Protocol>;
using asio::ip::tcp;
using std::chrono::milliseconds;

/** What a connection is counted as. */
enum class Place : unsigned char
{
    Ordinary,
    Stream,
    Refused, ///< beyond the limit of connections; it gets an answer that says so
};
constexpr std::size_t PLACES = 3;
/** Further connections beyond the limit are closed without an answer. */
constexpr std::size_t MOST_REFUSED = 16;
/** How long a client may take to read the last answer before its connection is closed. */
constexpr milliseconds FAREWELL{1000};
constexpr milliseconds PAUSE_AFTER_FAILED_ACCEPT{100};

char smallLetter(char character)
{
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character - 'A' + 'a') : character;
}

/** Whether the request is wrong, and not only at its end or on a broken connection. */
bool isOfRequest(error_code error)
{
    return error.category() == http::make_error_code(http::error::bad_method).category() &&
           error != http::error::end_of_stream && error != http::error::partial_message;
}

class Connection;

/** What all connections share. Only the server's thread uses it, unless a member says something else. */
struct Shared
{
    Shared(const ServerSettings& settings, Handler handler)
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

    std::size_t& count(Place place) { return m_Counts.at(static_cast<std::size_t>(place)); }

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
    std::set<std::shared_ptr<Connection>> m_Connections;
    std::array<std::size_t, PLACES> m_Counts{};
    std::mutex m_DurationsLock;
    Cli::Histogram m_Durations;
};

/** One client: requests and their answers, one after the other, or one stream of events. */
class Connection : public std::enable_shared_from_this<Connection>
{
public:
    Connection(Shared& shared, Socket socket, Door door, Place place)
        : m_Shared(shared),
          m_Socket(std::move(socket)),
          m_Timer(m_Socket.get_executor()),
          m_Door(door),
          m_Place(place)
    {
        ++m_Shared.count(m_Place);
    }

    void start()
    {
        Sockets::prepareConnection(static_cast<Sockets::Native>(m_Socket.native_handle()));
        if (m_Place == Place::Refused)
            refuse(503, "The service has as many connections as it allows. Try again later.");
        else
            waitForRequest();
    }

    /** Sends what is new, if this is a stream. */
    void wake()
    {
        if (m_Events != nullptr)
            sendEvents();
    }

    void close()
    {
        const auto self = shared_from_this();
        if (std::exchange(m_IsClosed, true))
            return;
        m_Shared.m_Connections.erase(self);
        --m_Shared.count(m_Place);
        error_code ignored;
        m_Timer.cancel();
        m_Socket.close(ignored);
        m_Events.reset();
    }

private:
    using Step = void (Connection::*)();
    using Parser = http::request_parser<http::string_body>;

    /**
     * What is called at the end of an operation. It keeps this object alive, and calls `next` unless the
     * connection was closed meanwhile.
     */
    template<typename Next>
    auto then(Next next)
    {
        return [self = shared_from_this(), next](error_code error, std::size_t size = 0) {
            if (!self->m_IsClosed)
                next(error, size);
        };
    }

    /** Calls `late` unless another limit is set first. */
    void within(milliseconds limit, Step late)
    {
        m_Timer.expires_after(limit);
        m_Timer.async_wait(then([this, late, turn = ++m_Turn](error_code error, std::size_t) {
            if (!error && turn == m_Turn)
                (this->*late)();
        }));
    }

    void waitForRequest()
    {
        m_Parser.emplace();
        m_Parser->header_limit(static_cast<std::uint32_t>(m_Shared.m_Limits.m_Header));
        m_Parser->body_limit(m_Shared.m_Limits.m_Body);
        if (m_Buffer.size() > 0)
            return readHeader();
        within(m_Shared.m_Limits.m_Request, &Connection::close);
        m_Socket.async_wait(Socket::wait_read, then([this](error_code error, std::size_t) {
                                if (error)
                                    close();
                                else
                                    readHeader();
                            }));
    }

    void readHeader()
    {
        m_Late = false;
        within(m_Shared.m_Limits.m_Request, &Connection::stopReading);
        http::async_read_header(m_Socket, m_Buffer, *m_Parser,
                                then([this](error_code error, std::size_t size) {
                                    // The parser's limit holds for the first line and for the fields, each.
                                    if (!error && size > m_Shared.m_Limits.m_Header)
                                        error = http::error::header_limit;
                                    if (isFit(error))
                                        readBody();
                                }));
    }

    void readBody()
    {
        const auto expected = m_Parser->get().find(http::field::expect);
        if (expected == m_Parser->get().end())
            return readRest();
        if (!beast::iequals(expected->value(), "100-continue"))
            return refuse(417, "The service does not know what the request expects.");
        m_Out = "HTTP/1.1 100 Continue\r\n\r\n";
        asio::async_write(m_Socket, asio::buffer(m_Out), then([this](error_code error, std::size_t) {
                              if (isFit(error))
                                  readRest();
                          }));
    }

    void readRest()
    {
        http::async_read(m_Socket, m_Buffer, *m_Parser, then([this](error_code error, std::size_t) {
                             if (isFit(error))
                                 handle();
                         }));
    }

    /** Ends the read that is under way; its end finds out that the request is late. */
    void stopReading()
    {
        m_Late = true;
        error_code ignored;
        m_Socket.cancel(ignored);
    }

    /** Whether reading may go on. If not, the client gets an answer, if it can still understand one. */
    bool isFit(error_code error)
    {
        if (m_Late)
            refuse(408, "The request did not come in time.");
        else if (!error)
            return true;
        else if (error == http::error::header_limit || error == http::error::buffer_overflow)
            refuse(431, "The header of the request is too long.");
        else if (error == http::error::body_limit)
            refuse(413, "The content of the request is too long.");
        else if (error == http::error::bad_version)
            refuse(505, "The service speaks HTTP/1.1 and HTTP/1.0.");
        else if (isOfRequest(error))
            refuse(400, "The request is no HTTP request.");
        else
            close();
        return false;
    }

    /** The last answer of this connection. */
    void refuse(unsigned status, const std::string& detail)
    {
        m_KeepsAlive = false;
        m_Begin = std::chrono::steady_clock::now();
        send(problem(status, detail));
    }

    std::optional<Request> request() const
    {
        const auto& message = m_Parser->get();
        const auto target = parseTarget({message.target().data(), message.target().size()});
        if (!target)
            return std::nullopt;
        Request request;
        request.m_Method = std::string(message.method_string());
        request.m_Path = target->m_Path;
        request.m_Query = target->m_Query;
        for (const auto& field : message) {
            std::string name(field.name_string());
            std::transform(name.begin(), name.end(), name.begin(), smallLetter);
            std::string& value = request.m_Headers[name];
            value += (value.empty() ? "" : ", ") + std::string(field.value());
        }
        request.m_Body = message.body();
        return request;
    }

    void handle()
    {
        m_Begin = std::chrono::steady_clock::now();
        m_KeepsAlive = m_Parser->get().keep_alive();
        m_WantsHeadAlone = m_Parser->get().method() == http::verb::head;
        std::optional<Request> asked = request();
        if (!asked)
            return send(problem(400, "The target of the request is wrong."));
        const bool isTrusted =
            m_Door == Door::Local &&
            m_Shared.m_IsTrustedPeer(static_cast<Sockets::Native>(m_Socket.native_handle()));
        if (std::optional<Response> refusal = admit(m_Shared.m_Access, m_Door, isTrusted, *asked))
            return send(std::move(*refusal));
        if (m_WantsHeadAlone)
            asked->m_Method = "GET";
        within(m_Shared.m_Limits.m_Request, &Connection::giveUp);
        try {
            m_Shared.m_Handler(*asked, responder());
        } catch (const Failure& failure) {
            answer(m_Turn, problem(failure));
        } catch (const std::exception&) {
            answer(m_Turn, problem(500, "The service failed to answer."));
        }
    }

    /** Brings the answer to the server's thread, whether or not server and connection still exist. */
    Respond responder()
    {
        return [context = std::weak_ptr(m_Shared.m_Context), connection = weak_from_this(),
                turn = m_Turn](Response response) {
            const auto kept = context.lock();
            if (kept == nullptr)
                return;
            auto shared = std::make_shared<Response>(std::move(response));
            asio::post(*kept, [connection, turn, shared] {
                if (const auto self = connection.lock())
                    self->answer(turn, std::move(*shared));
            });
        };
    }

    void giveUp()
    {
        answer(m_Turn, problem(503, "The answer was not ready in time. A change may still happen."));
    }

    /** Each request gets one answer; a later one is dropped. */
    void answer(std::uint64_t turn, Response response)
    {
        if (turn == m_Turn && !m_IsClosed)
            send(std::move(response));
    }

    void send(Response response)
    {
        if (response.m_Events != nullptr && !m_WantsHeadAlone && !takeStreamPlace())
            response = problem(503, "The service has as many streams as it allows. Try again later.");
        const bool isStream = response.m_Events != nullptr;
        m_KeepsAlive = m_KeepsAlive && !isStream;
        m_Out = headText(response, m_KeepsAlive);
        if (!m_WantsHeadAlone) {
            m_Out += response.m_Body;
            m_Events = std::move(response.m_Events);
        }
        write(isStream && !m_WantsHeadAlone ? &Connection::beginStream : &Connection::endAnswer);
    }

    bool takeStreamPlace()
    {
        if (m_Shared.count(Place::Stream) >= m_Shared.m_Limits.m_Streams)
            return false;
        --m_Shared.count(m_Place);
        m_Place = Place::Stream;
        ++m_Shared.count(m_Place);
        return true;
    }

    void write(Step next)
    {
        m_IsWriting = true;
        within(m_Shared.m_Limits.m_Request, &Connection::close);
        asio::async_write(m_Socket, asio::buffer(m_Out), then([this, next](error_code error, std::size_t) {
                              m_IsWriting = false;
                              if (error)
                                  close();
                              else
                                  (this->*next)();
                          }));
    }

    void endAnswer()
    {
        m_Shared.addDuration(std::chrono::steady_clock::now() - m_Begin);
        if (m_KeepsAlive)
            waitForRequest();
        else
            farewell();
    }

    /**
     * A connection that is closed while something is unread is reset, and the client may lose the answer. So
     * what still comes is read for a while.
     */
    void farewell()
    {
        error_code ignored;
        m_Socket.shutdown(Socket::shutdown_send, ignored);
        within(std::min(FAREWELL, m_Shared.m_Limits.m_Request), &Connection::close);
        discard();
    }

    /** Reads until the client goes, and then closes. */
    void discard()
    {
        m_Socket.async_read_some(asio::buffer(m_Discarded), then([this](error_code error, std::size_t) {
                                     if (error)
                                         close();
                                     else
                                         discard();
                                 }));
    }

    void beginStream()
    {
        discard();
        keepSilence();
        sendEvents();
    }

    void keepSilence() { within(m_Shared.m_Limits.m_Silence, &Connection::sendComment); }

    void sendComment()
    {
        m_Out = ":\n\n";
        write(&Connection::continueStream);
    }

    void continueStream()
    {
        keepSilence();
        sendEvents();
    }

    void sendEvents()
    {
        if (m_IsWriting)
            return;
        try {
            m_Out = m_Events->next();
        } catch (const std::exception&) {
            // The client asks again and then gets an answer that says why.
            return close();
        }
        if (!m_Out.empty())
            write(&Connection::continueStream);
    }

    Shared& m_Shared;
    Socket m_Socket;
    asio::steady_timer m_Timer;
    const Door m_Door;
    Place m_Place;
    std::uint64_t m_Turn = 0; ///< changes whenever another limit begins
    beast::flat_buffer m_Buffer;
    std::optional<Parser> m_Parser;
    bool m_IsClosed = false;
    bool m_Late = false;
    bool m_KeepsAlive = false;
    bool m_WantsHeadAlone = false;
    bool m_IsWriting = false;
    std::chrono::steady_clock::time_point m_Begin;
    std::string m_Out;
    std::unique_ptr<IEventStream> m_Events;
    std::array<char, 512> m_Discarded{};
};

/** Where clients come in. */
class Listener
{
public:
    Listener(Shared& shared, Acceptor acceptor, Door door)
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

    void receive(Socket socket)
    {
        Place place = Place::Ordinary;
        if (m_Shared.count(place) >= m_Shared.m_Limits.m_Connections)
            place = Place::Refused;
        if (place == Place::Refused && m_Shared.count(place) >= MOST_REFUSED)
            return;
        try {
            const auto connection = std::make_shared<Connection>(m_Shared, std::move(socket), m_Door, place);
            m_Shared.m_Connections.insert(connection);
            connection->start();
        } catch (const std::exception&) {
            // No memory for this client. Others must still come in.
            return;
        }
    }

    Shared& m_Shared;
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
        const auto connections = m_Shared.m_Connections; // `each` may remove one
        for (const auto& connection : connections)
            each(*connection);
    }

    void close()
    {
        for (const auto& listener : m_Listeners)
            listener->close();
        forEachConnection([](Connection& connection) { connection.close(); });
        m_Work.reset();
    }

    Shared m_Shared;
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
        native->forEachConnection([](Connection& connection) { connection.wake(); });
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
