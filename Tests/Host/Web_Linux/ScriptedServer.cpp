#include "Host/Web_Linux/ScriptedServer.h"

#include "Base/Failure.h"

#include <stdexcept>
#include <thread>

namespace HostTest {
namespace {

using namespace Host::Web;

Response textAnswer(std::string text)
{
    Response response;
    response.m_Type = "text/plain";
    response.m_Body = std::move(text);
    return response;
}

} // namespace

std::string ScriptedStream::next()
{
    if (m_Source->m_Fails)
        throw std::runtime_error("no more");
    const std::scoped_lock guard(m_Source->m_Lock);
    return std::exchange(m_Source->m_Text, {});
}

ScriptedServer::ScriptedServer(ServerSettings settings)
{
    settings.m_Port = 0;
    m_Server = std::make_unique<Server>(
        settings, [this](const Request& request, Respond respond) { handle(request, std::move(respond)); });
}

void ScriptedServer::handle(const Request& request, Respond respond)
{
    {
        const std::scoped_lock guard(m_Lock);
        m_Requests.push_back(request);
        if (request.m_Path == "/never")
            return m_Waiting.push_back(respond);
    }
    if (request.m_Path == "/failure")
        throw Host::Failure(Host::ExitCode::NoSuchObject, "There is no such thing.");
    if (request.m_Path == "/secret")
        throw std::runtime_error("an inner secret");
    if (request.m_Path == "/big")
        return respond(textAnswer(std::string(BIG, 'x')));
    if (request.m_Path == "/twice")
        respond(textAnswer("one"));
    if (request.m_Path == "/stream") {
        Response response;
        response.m_Type = "text/event-stream";
        response.m_Events = std::make_unique<ScriptedStream>(m_Events);
        return respond(std::move(response));
    }
    respond(textAnswer(request.m_Method + ' ' + request.m_Path + ' ' + request.m_Body));
}

std::vector<Respond> ScriptedServer::waiting()
{
    const std::scoped_lock guard(m_Lock);
    return m_Waiting;
}

std::vector<Request> ScriptedServer::requests()
{
    const std::scoped_lock guard(m_Lock);
    return m_Requests;
}

void ScriptedServer::awaitRoom() const
{
    while (askOnce(url(), "/").m_Status != 200)
        std::this_thread::yield();
}

} // namespace HostTest
