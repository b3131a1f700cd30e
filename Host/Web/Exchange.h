#pragma once

#include <functional>
#include <map>
#include <memory>
#include <string>
#include <utility>
#include <vector>

// Requests and answers over HTTP, without the library that carries them.
namespace Host::Web {

/** A request that the server has let in. Its sizes are within the server's limits. */
struct Request
{
    std::string m_Method;                         ///< in capitals; "GET" also when only the head is asked for
    std::string m_Path;                           ///< without the query; percent signs are decoded
    std::map<std::string, std::string> m_Query;   ///< decoded
    std::map<std::string, std::string> m_Headers; ///< names in small letters
    std::string m_Body;
    bool m_Local = false;     ///< whether it came through the local socket
    bool m_MayChange = false; ///< whether the caller may change something; only over the local socket
};

/** Gives the text of a stream of server-sent events, piece by piece. */
class IEventStream
{
public:
    virtual ~IEventStream() = default;

    /**
     * What there is to send now; empty when nothing new is there. Called on the server's thread: when the
     * stream begins, after each `wake` of the server, and when the piece before was sent.
     */
    virtual std::string next() = 0;
};

/** An answer. With a stream, the body is empty and the answer goes on until one side ends it. */
struct Response
{
    unsigned m_Status = 200;
    std::string m_Type; ///< of the content, such as "application/json"
    std::string m_Body;
    std::vector<std::pair<std::string, std::string>> m_Headers;
    std::unique_ptr<IEventStream> m_Events;
};

/** Gives the answer to a request. Call it once, from any thread. */
using Respond = std::function<void(Response)>;

/** Answers a request, at once or later. It must not wait, because it runs on the server's only thread. */
using Handler = std::function<void(const Request&, Respond)>;

} // namespace Host::Web
