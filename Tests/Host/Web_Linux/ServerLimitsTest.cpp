#include "Base/Failure.h"
#include "Host/Web_Linux/ScriptedServer.h"
#include "Web/Server.h"

#include <gmock/gmock.h>

#include <chrono>
#include <list>
#include <system_error>
#include <thread>

// Each limit of the server, and clients that try to get past it.
namespace {

using Host::Web::ServerSettings;
using HostTest::askOnce;
using HostTest::NEVER;
using HostTest::RawAnswer;
using HostTest::RawClient;
using HostTest::rawRequest;
using HostTest::ScriptedServer;
using std::chrono::milliseconds;
using testing::HasSubstr;
using testing::IsEmpty;

constexpr milliseconds SOON{50};

/** Every request is late very soon. */
ServerSettings impatient(std::size_t connections = 64)
{
    ServerSettings settings;
    settings.m_Limits.m_Request = SOON;
    settings.m_Limits.m_Connections = connections;
    return settings;
}

/** No limit of time ends anything. */
ServerSettings patient()
{
    ServerSettings settings;
    settings.m_Limits.m_Request = NEVER;
    settings.m_Limits.m_Silence = NEVER;
    return settings;
}

/** The answer to a request that the server may refuse before it has read it completely. */
RawAnswer answerTo(const std::string& url, const std::string& request)
{
    RawClient client(url);
    client.send(request);
    const RawAnswer answer = client.receive();
    if (answer.m_Status != 200) {
        EXPECT_EQ(client.receiveAll(), "") << "a connection with a broken request goes on";
    }
    return answer;
}

void expectRefusal(const RawAnswer& answer, unsigned status)
{
    EXPECT_EQ(answer.m_Status, status);
    if (answer.m_Status == 0)
        return;
    EXPECT_EQ(answer.m_Headers.at("Content-Type"), "application/problem+json");
    EXPECT_EQ(answer.m_Headers.at("Connection"), "close");
    EXPECT_THAT(answer.m_Body, HasSubstr("\"status\": " + std::to_string(status)));
}

std::string requestOfSize(std::size_t size)
{
    const std::size_t rest = rawRequest("/", "X: \r\n").size();
    return rawRequest("/", "X: " + std::string(size - rest, 'x') + "\r\n");
}

TEST(ServerLimitsTest, AHeaderHasAtMost8KiB)
{
    ScriptedServer server;
    EXPECT_EQ(answerTo(server.url(), requestOfSize(8192)).m_Status, 200U);
    expectRefusal(answerTo(server.url(), requestOfSize(8193)), 431);
    expectRefusal(answerTo(server.url(), requestOfSize(1'000'000)), 431);
    expectRefusal(answerTo(server.url(), rawRequest("/" + std::string(10'000, 'x'))), 431);
    std::string fields;
    for (int i = 0; i < 2000; ++i)
        fields += "a: b\r\n";
    expectRefusal(answerTo(server.url(), rawRequest("/", fields)), 431);
    EXPECT_EQ(server.requests().size(), 1U);
}

TEST(ServerLimitsTest, ContentHasAtMost64KiB)
{
    ScriptedServer server;
    const auto sized = [](std::size_t size) {
        return rawRequest("/", "Content-Length: " + std::to_string(size) + "\r\n", "PUT") +
               std::string(size, 'x');
    };
    EXPECT_EQ(answerTo(server.url(), sized(65'536)).m_Status, 200U);
    expectRefusal(answerTo(server.url(), sized(65'537)), 413);
    expectRefusal(answerTo(server.url(), rawRequest("/", "Content-Length: 18446744073709551615\r\n", "PUT")),
                  413);
    expectRefusal(answerTo(server.url(), rawRequest("/", "Transfer-Encoding: chunked\r\n", "PUT") +
                                             "10001\r\n" + std::string(65'537, 'x') + "\r\n0\r\n\r\n"),
                  413);
    EXPECT_EQ(server.requests().size(), 1U);
}

TEST(ServerLimitsTest, WhatIsNoRequestIsRefused)
{
    ScriptedServer server;
    for (const std::string& wrong :
         {std::string("\x16\x03\x01\x02\x00\x01\x00\x01\xfc\x03\x03", 11), std::string("hello\r\n\r\n"),
          std::string("GET / HTTP/1.1\r\nHost localhost\r\n\r\n"), std::string("GET  / HTTP/1.1\r\n\r\n"),
          std::string("GET /\x01 HTTP/1.1\r\n\r\n"), rawRequest("/", "Content-Length: -1\r\n"),
          rawRequest("/", "Content-Length: 1\r\nContent-Length: 2\r\n"), rawRequest("/", "X : y\r\n"),
          rawRequest("/", "Content-Length: 4\r\nTransfer-Encoding: chunked\r\n", "PUT") + "0\r\n\r\n"})
        expectRefusal(answerTo(server.url(), wrong), 400);
    for (const char* target : {"https://localhost/", "*", "/%00", "/%zz", "/?a=1&a=2"})
        EXPECT_EQ(askOnce(server.url(), target).m_Status, 400U) << target;
    expectRefusal(answerTo(server.url(), "PRI * HTTP/2.0\r\n\r\nSM\r\n\r\n"), 505);
    EXPECT_THAT(server.requests(), IsEmpty());
}

TEST(ServerLimitsTest, ThereAreAtMost64Connections)
{
    ScriptedServer server(patient());
    std::list<RawClient> clients;
    for (int i = 0; i < 64; ++i)
        clients.emplace_back(server.url());
    clients.back().send(rawRequest("/")); // Connections are taken in order.
    EXPECT_EQ(clients.back().receive().m_Status, 200U);
    RawClient tooMany(server.url());
    expectRefusal(tooMany.receive(), 503);
    clients.pop_front();
    server.awaitRoom();
}

TEST(ServerLimitsTest, ThoseBeyondTheLimitAreFewAndGoSoon)
{
    ServerSettings settings = patient();
    settings.m_Limits.m_Connections = 1;
    ScriptedServer server(settings);
    RawClient only(server.url());
    std::list<RawClient> refused;
    for (int i = 0; i < 40; ++i)
        refused.emplace_back(server.url());
    std::size_t answers = 0;
    for (RawClient& client : refused)
        answers += client.receive().m_Status == 503 ? 1 : 0;
    EXPECT_GE(answers, 16U);
    for (RawClient& client : refused)
        EXPECT_EQ(client.receiveAll(), "");
    only.send(rawRequest("/"));
    EXPECT_EQ(only.receive().m_Status, 200U);
}

TEST(ServerLimitsTest, ThereAreAtMost32StreamsBesideTheConnections)
{
    ScriptedServer server(patient());
    std::list<RawClient> streams;
    for (int i = 0; i < 32; ++i) {
        streams.emplace_back(server.url()).send(rawRequest("/stream"));
        EXPECT_EQ(streams.back().receive().m_Status, 200U);
    }
    EXPECT_EQ(askOnce(server.url(), "/stream").m_Status, 503U);
    std::list<RawClient> clients;
    for (int i = 0; i < 64; ++i)
        clients.emplace_back(server.url());
    clients.back().send(rawRequest("/"));
    while (clients.back().receive().m_Status == 503) { // The one that was no stream has not gone yet.
        clients.pop_back();
        clients.emplace_back(server.url()).send(rawRequest("/"));
    }
    streams.pop_front();
    while (server.events().m_Open == 32)
        continue;
    clients.front().send(rawRequest("/stream"));
    EXPECT_EQ(clients.front().receive().m_Status, 200U);
}

TEST(ServerLimitsTest, ARequestThatIsNotCompleteInTimeIsRefused)
{
    ScriptedServer server(impatient());
    for (const std::string& begin :
         {std::string("G"), std::string("GET / HTTP/1.1\r\nHost: lo"),
          rawRequest("/", "Content-Length: 3\r\n", "PUT") + "ab",
          rawRequest("/", "Content-Length: 3\r\nExpect: 100-continue\r\n", "PUT")}) {
        RawClient client(server.url());
        client.send(begin);
        if (begin.find("Expect") != std::string::npos)
            (void)client.receive();
        expectRefusal(client.receive(), 408);
        EXPECT_EQ(client.receiveAll(), "");
    }
    EXPECT_THAT(server.requests(), IsEmpty());
}

TEST(ServerLimitsTest, SlowBytesDoNotMakeTheTimeLonger)
{
    ScriptedServer server(impatient());
    RawClient client(server.url());
    client.send("GET / HTTP/1.1\r\nX: ");
    while (!client.hasNews())
        client.send("x");
    EXPECT_THAT(client.receive().m_Status, testing::AnyOf(408U, 431U));
}

TEST(ServerLimitsTest, AConnectionOnWhichNothingComesIsClosed)
{
    ScriptedServer server(impatient());
    RawClient silent(server.url());
    EXPECT_EQ(silent.receiveAll(), "");
    RawClient satisfied(server.url());
    satisfied.send(rawRequest("/"));
    EXPECT_EQ(satisfied.receive().m_Status, 200U);
    EXPECT_EQ(satisfied.receiveAll(), "");
}

TEST(ServerLimitsTest, AClientThatDoesNotTakeItsAnswerLosesItsPlace)
{
    ScriptedServer server(impatient(1));
    RawClient client(server.url());
    client.send(rawRequest("/big"));
    while (!client.hasNews())
        continue;
    server.awaitRoom();
    EXPECT_LT(client.receiveAll().size(), ScriptedServer::BIG);
}

TEST(ServerLimitsTest, AHandlerThatNeverAnswersDelaysNobody)
{
    ScriptedServer server(patient());
    RawClient waiting(server.url());
    waiting.send(rawRequest("/never"));
    for (int i = 0; i < 10; ++i)
        EXPECT_EQ(askOnce(server.url(), "/other").m_Status, 200U);
    EXPECT_FALSE(waiting.hasNews());
}

TEST(ServerLimitsTest, AnAnswerThatIsNotReadyInTimeIsGivenUp)
{
    ScriptedServer server(impatient());
    RawClient client(server.url());
    client.send(rawRequest("/never") + rawRequest("/next"));
    const RawAnswer answer = client.receive();
    EXPECT_EQ(answer.m_Status, 503U);
    EXPECT_THAT(answer.m_Body, HasSubstr("not ready in time"));
    server.waiting().at(0)({}); // too late
    EXPECT_EQ(client.receive().m_Body, "GET /next ");
}

TEST(ServerLimitsTest, ClientsThatVanishLeaveTheirPlace)
{
    ServerSettings settings = patient();
    settings.m_Limits.m_Connections = 2;
    ScriptedServer server(settings);
    for (const std::string& last :
         {std::string(), std::string("GET / HT"), rawRequest("/", "Content-Length: 9\r\n", "PUT"),
          rawRequest("/"), rawRequest("/big"), rawRequest("/stream")})
        for (int i = 0; i < 4; ++i) {
            server.awaitRoom();
            RawClient client(server.url());
            client.send(last);
            if (i % 2 == 0)
                client.vanish();
            else
                client.endSending();
        }
    server.awaitRoom();
    while (server.events().m_Open > 0)
        continue;
}

TEST(ServerLimitsTest, ItEndsAtOnceWhateverClientsDo)
{
    ScriptedServer server(patient());
    std::list<RawClient> clients;
    for (const std::string& request : {std::string(), std::string("GET / HT"), rawRequest("/never"),
                                       rawRequest("/big"), rawRequest("/stream")})
        clients.emplace_back(server.url()).send(request);
    while (server.waiting().empty() || server.events().m_Open == 0)
        continue;
    server.server().stop();
    EXPECT_EQ(server.events().m_Open, 0);
    EXPECT_THROW(RawClient{server.url()}, std::system_error);
}

TEST(ServerLimitsTest, ItEndsWhileClientsCome)
{
    for (int i = 0; i < 20; ++i) {
        ScriptedServer server(patient());
        std::thread coming([&] {
            try {
                for (;;)
                    RawClient(server.url()).send(rawRequest("/"));
            } catch (const std::system_error&) {
                return; // nobody listens any more
            }
        });
        server.awaitRoom();
        server.server().stop();
        coming.join();
    }
}

TEST(ServerLimitsTest, AnAddressForOthersNeedsAToken)
{
    ServerSettings settings;
    settings.m_Address = "0.0.0.0";
    EXPECT_THROW(ScriptedServer{settings}, Host::Failure);
    settings.m_Access.m_Token = "secret";
    ScriptedServer server(settings);
    EXPECT_EQ(askOnce(server.url(), "/").m_Status, 401U);
    EXPECT_EQ(askOnce(server.url(), "/", "Authorization: Bearer wrong\r\n").m_Status, 401U);
    const RawAnswer answer = askOnce(server.url(), "/", "Authorization: Bearer secret\r\n");
    EXPECT_EQ(answer.m_Status, 200U);
    EXPECT_EQ(server.requests().size(), 1U);
    EXPECT_FALSE(server.requests().at(0).m_MayChange);
}

TEST(ServerLimitsTest, AStrangeHostIsRefusedUntilTheSettingsAllowIt)
{
    ScriptedServer server;
    const auto askAs = [&](const std::string& host) {
        return answerTo(server.url(), "GET / HTTP/1.1\r\nConnection: close\r\nHost: " + host + "\r\n\r\n")
            .m_Status;
    };
    EXPECT_EQ(askAs("evil.example"), 421U);
    EXPECT_EQ(askAs("127.0.0.1"), 200U);
    EXPECT_EQ(answerTo(server.url(), "GET / HTTP/1.1\r\nConnection: close\r\n\r\n").m_Status, 400U);
    EXPECT_EQ(askAs("localhost\r\nHost: localhost"), 400U);
    EXPECT_EQ(askOnce(server.url(), "http://evil.example/").m_Status, 421U);
    server.server().change({"token", {"evil.example"}});
    EXPECT_EQ(askAs("evil.example"), 200U);
    EXPECT_EQ(askOnce(server.url(), "/", "Authorization: Bearer token\r\n").m_Status, 200U);
    EXPECT_FALSE(server.requests().back().m_MayChange);
}

} // namespace
