#include "Web/Client.h"

#include "Base/Failure.h"
#include "Web/AnswerReader.h"
#include "Web_Linux/LocalAddress.h"

#include <TLX/Linux/Descriptor.h>
#include <TLX/Linux/DescriptorWatch.h>
#include <TLX/Waiter.h>

#include <array>
#include <cerrno>
#include <exception>
#include <system_error>

#include <sys/socket.h>

namespace Host::Web {
namespace {

using TLX::Linux::CDescriptor;

/** Longer than the service takes to give up an answer. */
constexpr timeval PATIENCE{20, 0};

[[noreturn]] void fail(const std::string& what)
{
    throw Failure(ExitCode::RequestFailed, what);
}

CDescriptor connected(const std::filesystem::path& path)
{
    const LocalAddress address(path);
    CDescriptor socket(::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0));
    if (!socket.Valid() || ::connect(socket.Get(), address.get(), address.size()) != 0)
        throw Failure(errno == EACCES ? ExitCode::NoPermission : ExitCode::RequestFailed,
                      "No service can be reached at " + path.string() + ": " +
                          std::generic_category().message(errno) + ".");
    (void)::setsockopt(socket.Get(), SOL_SOCKET, SO_RCVTIMEO, &PATIENCE, sizeof PATIENCE);
    (void)::setsockopt(socket.Get(), SOL_SOCKET, SO_SNDTIMEO, &PATIENCE, sizeof PATIENCE);
    return socket;
}

void send(const CDescriptor& socket, std::string_view text)
{
    while (!text.empty()) {
        const ssize_t sent = ::send(socket.Get(), text.data(), text.size(), MSG_NOSIGNAL);
        if (sent < 0 && errno == EINTR)
            continue;
        if (sent <= 0)
            fail("The service does not take the request.");
        text.remove_prefix(static_cast<std::size_t>(sent));
    }
}

/** Adds what has come to `text`. Returns false at the end. */
bool receive(const CDescriptor& socket, std::string& text)
{
    std::array<char, 16384> piece{};
    ssize_t size = 0;
    do
        size = ::recv(socket.Get(), piece.data(), piece.size(), 0);
    while (size < 0 && errno == EINTR);
    if (size < 0)
        fail("The service does not answer.");
    text.append(piece.data(), static_cast<std::size_t>(size));
    return size > 0;
}

/** Reads the beginning of an answer, and takes it away from `text`. */
AnswerHead receiveHead(const CDescriptor& socket, std::string& text)
{
    std::optional<AnswerHead> head;
    while (!(head = readHead(text)))
        if (!receive(socket, text))
            fail("The service went away before it answered.");
    text.erase(0, head->m_Size);
    return *head;
}

std::string receiveContent(const CDescriptor& socket, const AnswerHead& head, std::string text)
{
    while (receive(socket, text))
        continue;
    if (head.m_Length != text.size())
        fail("The service went away before its answer was complete.");
    if (head.m_Status != 200)
        throwProblem(head.m_Status, text);
    return text;
}

std::string requestText(const std::string& method, const std::string& target, const std::string& fields)
{
    return method + ' ' + target + " HTTP/1.1\r\nHost: localhost\r\nConnection: close\r\n" + fields + "\r\n";
}

std::string ask(const std::filesystem::path& path, const std::string& request)
{
    const CDescriptor socket = connected(path);
    send(socket, request);
    std::string text;
    const AnswerHead head = receiveHead(socket, text);
    return receiveContent(socket, head, std::move(text));
}

/** Reads a stream on a thread of its own. */
class Following
{
public:
    Following(const CDescriptor& socket, const std::string& begin,
              const std::function<void(const SentEvent&)>& take)
        : m_Socket(socket), m_Take(take)
    {
        if (m_Ended.Init(false, true) != TLX::Threading::WaitResult::Taken)
            fail("The system has no events left.");
        m_Events.add(begin, m_Take);
        m_Watch.emplace(socket.Get(), [this] { return read(); });
    }

    FollowEnd wait(TLX::Threading::CEvent& stop)
    {
        const bool isAsked = TLX::Threading::CWaiter{&stop, &m_Ended}.Wait() == 1;
        m_Watch.reset();
        if (m_Failure != nullptr)
            std::rethrow_exception(m_Failure);
        return isAsked ? FollowEnd::Asked : FollowEnd::Service;
    }

private:
    bool read()
    {
        try {
            std::string piece;
            if (receive(m_Socket, piece)) {
                m_Events.add(piece, m_Take);
                return true;
            }
        } catch (const std::exception&) {
            m_Failure = std::current_exception();
        }
        m_Ended.Set();
        return false;
    }

    const CDescriptor& m_Socket;
    const std::function<void(const SentEvent&)>& m_Take;
    EventReader m_Events;
    TLX::Threading::CEvent m_Ended;
    std::exception_ptr m_Failure;
    std::optional<TLX::Linux::CDescriptorWatch> m_Watch;
};

} // namespace

bool Client::isThere() const
{
    try {
        return connected(m_Socket).Valid();
    } catch (const Failure&) {
        return false;
    }
}

std::string Client::get(const std::string& target) const
{
    return ask(m_Socket, requestText("GET", target, {}));
}

std::string Client::put(const std::string& target, const std::string& document) const
{
    return ask(m_Socket, requestText("PUT", target,
                                     "Content-Type: application/json\r\nContent-Length: " +
                                         std::to_string(document.size()) + "\r\n") +
                             document);
}

FollowEnd Client::follow(const std::string& target, const std::function<void(const SentEvent&)>& take,
                         TLX::Threading::CEvent& stop) const
{
    const CDescriptor socket = connected(m_Socket);
    send(socket, requestText("GET", target, {}));
    std::string text;
    const AnswerHead head = receiveHead(socket, text);
    if (head.m_Status != 200)
        (void)receiveContent(socket, head, text);
    return Following(socket, text, take).wait(stop);
}

std::filesystem::path usualService()
{
    return "/run/ostrel/serve.sock";
}

} // namespace Host::Web
