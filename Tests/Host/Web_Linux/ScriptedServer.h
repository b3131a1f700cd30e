#pragma once

#include "Host/Web_Linux/RawClient.h"
#include "Web/Server.h"

#include <atomic>
#include <chrono>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

namespace HostTest {

/** A limit of a server that ends no test. */
inline constexpr std::chrono::milliseconds NEVER{3'600'000};

/** A stream that sends what the test says. */
class ScriptedStream : public Host::Web::IEventStream
{
public:
    struct Source
    {
        void add(const std::string& text)
        {
            const std::scoped_lock guard(m_Lock);
            m_Text += text;
        }

        std::mutex m_Lock;
        std::string m_Text;          ///< what the next stream that asks gets
        std::atomic<int> m_Open = 0; ///< streams
        std::atomic<bool> m_Fails = false;
    };

    explicit ScriptedStream(std::shared_ptr<Source> source) : m_Source(std::move(source))
    {
        ++m_Source->m_Open;
    }
    ~ScriptedStream() override { --m_Source->m_Open; }

    std::string next() override;

private:
    std::shared_ptr<Source> m_Source;
};

/** A server with some paths that show what a server must cope with. */
class ScriptedServer
{
public:
    static constexpr std::size_t BIG = std::size_t{32} * 1024 * 1024; ///< more than a system buffers

    explicit ScriptedServer(Host::Web::ServerSettings settings = {});

    std::string url() const { return m_Server->url(); }
    Host::Web::Server& server() { return *m_Server; }
    /** Ends the server. */
    void destroy() { m_Server.reset(); }

    ScriptedStream::Source& events() { return *m_Events; }
    /** Those that "/never" was asked with. */
    std::vector<Host::Web::Respond> waiting();
    std::vector<Host::Web::Request> requests();

    /** Asks for "/" until it answers 200, because places become free a little later than a client sees. */
    void awaitRoom() const;

private:
    void handle(const Host::Web::Request& request, Host::Web::Respond respond);

    std::shared_ptr<ScriptedStream::Source> m_Events = std::make_shared<ScriptedStream::Source>();
    std::mutex m_Lock;
    std::vector<Host::Web::Respond> m_Waiting;
    std::vector<Host::Web::Request> m_Requests;
    std::unique_ptr<Host::Web::Server> m_Server;
};

} // namespace HostTest
