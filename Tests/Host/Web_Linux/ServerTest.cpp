#include "Web/Server.h"

#include "Base/Failure.h"
#include "Host/Web_Linux/ScriptedServer.h"

#include <gmock/gmock.h>

#include <numeric>

namespace {

using HostTest::askOnce;
using HostTest::RawAnswer;
using HostTest::RawClient;
using HostTest::rawRequest;
using HostTest::ScriptedServer;
using testing::HasSubstr;
using testing::Not;

TEST(ServerTest, AnswersSeveralRequestsOverOneConnection)
{
    ScriptedServer server;
    RawClient client(server.url());
    client.send(rawRequest("/one"));
    EXPECT_EQ(client.receive().m_Body, "GET /one ");
    client.send(rawRequest("/two") + rawRequest("/three%20"));
    EXPECT_EQ(client.receive().m_Body, "GET /two ");
    const RawAnswer last = client.receive();
    EXPECT_EQ(last.m_Body, "GET /three  ");
    EXPECT_EQ(last.m_Headers.at("Connection"), "keep-alive");
    EXPECT_EQ(last.m_Headers.at("Cache-Control"), "no-store");
}

TEST(ServerTest, EndsTheConnectionWhenTheClientWants)
{
    ScriptedServer server;
    RawClient client(server.url());
    client.send(rawRequest("/", "Connection: close\r\n"));
    EXPECT_EQ(client.receive().m_Headers.at("Connection"), "close");
    EXPECT_EQ(client.receiveAll(), "");
    RawClient old(server.url());
    old.send("GET / HTTP/1.0\r\nHost: localhost\r\n\r\n");
    EXPECT_EQ(old.receive().m_Status, 200U);
    EXPECT_EQ(old.receiveAll(), "");
}

TEST(ServerTest, GivesTheHeadAloneWhereThatIsAsked)
{
    ScriptedServer server;
    RawClient client(server.url());
    client.send(rawRequest("/", {}, "HEAD") + rawRequest("/stream", {}, "HEAD"));
    EXPECT_EQ(client.receive(true).m_Headers.at("Content-Length"), "6");
    EXPECT_EQ(client.receive(true).m_Headers.at("Content-Type"), "text/event-stream");
    EXPECT_EQ(client.receiveAll(), "");
    EXPECT_EQ(server.requests().at(0).m_Method, "GET");
}

TEST(ServerTest, ReadsContentOfEitherKind)
{
    ScriptedServer server;
    RawClient client(server.url());
    client.send(rawRequest("/", "Content-Length: 3\r\n", "PUT") + "abc" +
                rawRequest("/", "Transfer-Encoding: chunked\r\n", "PUT") + "2\r\nde\r\n1\r\nf\r\n0\r\n\r\n");
    EXPECT_EQ(client.receive().m_Body, "PUT / abc");
    EXPECT_EQ(client.receive().m_Body, "PUT / def");
}

TEST(ServerTest, TellsAClientThatAsksToSendItsContent)
{
    ScriptedServer server;
    RawClient client(server.url());
    client.send(rawRequest("/", "Content-Length: 3\r\nExpect: 100-continue\r\n", "PUT"));
    EXPECT_EQ(client.receiveUntil("\r\n\r\n"), "HTTP/1.1 100 Continue\r\n\r\n");
    client.send("abc");
    EXPECT_EQ(client.receive().m_Body, "PUT / abc");
    client.send(rawRequest("/", "Content-Length: 3\r\nExpect: tea\r\n", "PUT"));
    EXPECT_EQ(client.receive().m_Status, 417U);
}

TEST(ServerTest, TheHandlerSeesHeadersInSmallLettersAndParameters)
{
    ScriptedServer server;
    (void)askOnce(server.url(), "/?a=1", "LAST-Event-ID: 7\r\nX: 1\r\nx: 2\r\n");
    const auto request = server.requests().at(0);
    EXPECT_EQ(request.m_Headers.at("last-event-id"), "7");
    EXPECT_EQ(request.m_Headers.at("x"), "1, 2");
    EXPECT_EQ(request.m_Query.at("a"), "1");
}

TEST(ServerTest, AWholeAddressIsATargetAndItsHostCounts)
{
    ScriptedServer server;
    EXPECT_EQ(askOnce(server.url(), server.url() + "/one").m_Body, "GET /one ");
    EXPECT_EQ(askOnce(server.url(), "http://localhost").m_Body, "GET / ");
    RawClient client(server.url());
    client.send("GET http://localhost/ HTTP/1.1\r\nHost: other.example\r\n\r\n");
    EXPECT_EQ(client.receive().m_Status, 200U);
    client.send("GET http://localhost/ HTTP/1.1\r\n\r\n");
    EXPECT_EQ(client.receive().m_Status, 400U) << "the field is missing";
}

TEST(ServerTest, AHandlerThatFailsTellsNoSecrets)
{
    ScriptedServer server;
    const RawAnswer failure = askOnce(server.url(), "/failure");
    EXPECT_EQ(failure.m_Status, 404U);
    EXPECT_EQ(failure.m_Headers.at("Content-Type"), "application/problem+json");
    EXPECT_THAT(failure.m_Body, HasSubstr("There is no such thing."));
    const RawAnswer secret = askOnce(server.url(), "/secret");
    EXPECT_EQ(secret.m_Status, 500U);
    EXPECT_THAT(secret.m_Body, Not(HasSubstr("secret")));
}

TEST(ServerTest, OnlyTheFirstAnswerCounts)
{
    ScriptedServer server;
    RawClient client(server.url());
    client.send(rawRequest("/twice") + rawRequest("/next"));
    EXPECT_EQ(client.receive().m_Body, "one");
    EXPECT_EQ(client.receive().m_Body, "GET /next ");
}

TEST(ServerTest, AnAnswerMayComeLaterFromAnotherThreadAndAfterTheEnd)
{
    ScriptedServer server;
    RawClient first(server.url());
    RawClient second(server.url());
    first.send(rawRequest("/never"));
    while (server.waiting().empty())
        EXPECT_EQ(askOnce(server.url(), "/other").m_Status, 200U);
    second.send(rawRequest("/never"));
    while (server.waiting().size() < 2)
        EXPECT_EQ(askOnce(server.url(), "/other").m_Status, 200U);
    Host::Web::Response response;
    response.m_Body = "late";
    server.waiting().at(0)(std::move(response));
    EXPECT_EQ(first.receive().m_Body, "late");
    server.destroy();
    server.waiting().at(1)({});
    server.waiting().at(0)({});
    EXPECT_EQ(second.receive().m_Status, 0U);
}

TEST(ServerTest, CountsHowLongAnswersTake)
{
    ScriptedServer server;
    RawClient client(server.url());
    for (int i = 0; i < 3; ++i) {
        client.send(rawRequest("/"));
        (void)client.receive();
    }
    client.send(rawRequest("/stream"));
    (void)client.receive();
    const auto durations = server.server().durations();
    EXPECT_EQ(std::accumulate(durations.m_Counts.begin(), durations.m_Counts.end(), 0U), 3U);
    EXPECT_GT(durations.m_Sum, 0);
}

TEST(ServerTest, RunsFunctionsOnItsThreadUntilItEnds)
{
    ScriptedServer server;
    std::atomic<bool> isDone = false;
    server.server().post([&] { isDone = true; });
    while (!isDone)
        EXPECT_EQ(askOnce(server.url(), "/").m_Status, 200U);
    server.server().stop();
    isDone = false;
    server.server().post([&] { isDone = true; });
    server.server().wake();
    server.server().change({});
    server.destroy();
    EXPECT_FALSE(isDone);
}

TEST(ServerTest, SaysWhyItCannotListen)
{
    ScriptedServer server;
    Host::Web::ServerSettings settings;
    settings.m_Port = static_cast<std::uint16_t>(std::stoi(server.url().substr(server.url().rfind(':') + 1)));
    const auto messageOf = [&] {
        try {
            const Host::Web::Server second(settings, {});
            return std::string("none");
        } catch (const Host::Failure& failure) {
            return std::string(failure.what());
        }
    };
    EXPECT_THAT(messageOf(),
                HasSubstr("Cannot listen on 127.0.0.1:" + std::to_string(settings.m_Port) + ": "));
    settings.m_Address = "localhost";
    EXPECT_THAT(messageOf(), HasSubstr("\"localhost\" is no IP address"));
}

} // namespace
