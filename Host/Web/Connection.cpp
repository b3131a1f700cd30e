#include "Web/Connection.h"

#include "Base/Failure.h"
#include "Base/Text.h"
#include "Web/AnswerText.h"
#include "Web/Problem.h"
#include "Web/Target.h"

#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/http.hpp>

#include <algorithm>
#include <cstdint>
#include <exception>
#include <optional>

namespace Host::Web {
namespace {

namespace beast = boost::beast;
namespace http = boost::beast::http;
using std::chrono::milliseconds;

/** How long a client may take to read the last answer before its connection is closed. */
constexpr milliseconds FAREWELL{1000};

/** Whether the request is wrong, and not only at its end or on a broken connection. */
bool isOfRequest(error_code error)
{
    return error.category() == http::make_error_code(http::error::bad_method).category() &&
           error != http::error::end_of_stream && error != http::error::partial_message;
}

/** One client: requests and their answers, one after the other, or one stream of events. */
class Connection : public IConnection, public std::enable_shared_from_this<Connection>
{
public:
    Connection(Connections& shared, Socket socket, Door door, Place place)
        : m_Shared(shared),
          m_Socket(std::move(socket)),
          m_Timer(m_Socket.get_executor()),
          m_Door(door),
          m_Place(place)
    {
        ++m_Shared.count(m_Place);
    }

    void start() override
    {
        Sockets::prepareConnection(static_cast<Sockets::Native>(m_Socket.native_handle()));
        if (m_Place == Place::Refused)
            refuse(503, "The service has as many connections as it allows. Try again later.");
        else
            waitForRequest();
    }

    void wake() override
    {
        if (m_Events != nullptr)
            sendEvents();
    }

    void close() override
    {
        const auto self = shared_from_this();
        if (std::exchange(m_IsClosed, true))
            return;
        m_Shared.m_Open.erase(self);
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
            std::string& value = request.m_Headers[inSmallLetters(std::string(field.name_string()))];
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

    Connections& m_Shared;
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

} // namespace

std::shared_ptr<IConnection> makeConnection(Connections& connections, Socket socket, Door door, Place place)
{
    return std::make_shared<Connection>(connections, std::move(socket), door, place);
}

} // namespace Host::Web
