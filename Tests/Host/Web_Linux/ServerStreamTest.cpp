#include "Host/Web_Linux/ScriptedServer.h"

#include <gmock/gmock.h>

#include <chrono>

namespace {

using HostTest::NEVER;
using HostTest::RawAnswer;
using HostTest::RawClient;
using HostTest::rawRequest;
using HostTest::ScriptedServer;
using std::chrono::milliseconds;

Host::Web::ServerSettings withSilence(milliseconds silence, milliseconds request = NEVER)
{
    Host::Web::ServerSettings settings;
    settings.m_Limits.m_Silence = silence;
    settings.m_Limits.m_Request = request;
    return settings;
}

RawClient openStream(const ScriptedServer& server)
{
    RawClient client(server.url());
    client.send(rawRequest("/stream"));
    const RawAnswer answer = client.receive();
    EXPECT_EQ(answer.m_Status, 200U);
    EXPECT_EQ(answer.m_Headers.at("Content-Type"), "text/event-stream");
    EXPECT_EQ(answer.m_Headers.count("Content-Length"), 0U);
    return client;
}

TEST(ServerStreamTest, SendsWhatIsThereAndWhatComes)
{
    ScriptedServer server(withSilence(NEVER));
    server.events().add("data: 1\n\n");
    RawClient client = openStream(server);
    EXPECT_EQ(client.receiveUntil("\n\n"), "data: 1\n\n");
    for (int i = 0; i < 100; ++i) {
        server.events().add("data: " + std::to_string(i) + "\n\n");
        server.server().wake();
        EXPECT_EQ(client.receiveUntil("\n\n"), "data: " + std::to_string(i) + "\n\n");
    }
}

TEST(ServerStreamTest, ASilentStreamShowsThatItExists)
{
    ScriptedServer server(withSilence(milliseconds(1)));
    RawClient client = openStream(server);
    for (int i = 0; i < 3; ++i)
        EXPECT_EQ(client.receiveUntil("\n\n"), ":\n\n");
}

TEST(ServerStreamTest, CommentsComeAlsoWhenTheServerIsWokenForNothing)
{
    ScriptedServer server(withSilence(milliseconds(20)));
    RawClient client = openStream(server);
    while (!client.hasNews())
        server.server().wake();
    EXPECT_EQ(client.receiveUntil("\n\n"), ":\n\n");
}

TEST(ServerStreamTest, AClientThatReadsNothingIsLeftAfterAWhile)
{
    ScriptedServer server(withSilence(NEVER, milliseconds(200)));
    RawClient client = openStream(server);
    server.events().add(std::string(ScriptedServer::BIG, 'x'));
    server.server().wake();
    while (server.events().m_Open > 0)
        continue;
    EXPECT_LT(client.receiveAll().size(), ScriptedServer::BIG);
}

TEST(ServerStreamTest, AClientThatGoesIsNoticed)
{
    ScriptedServer server(withSilence(NEVER));
    openStream(server).vanish();
    while (server.events().m_Open > 0)
        continue;
}

TEST(ServerStreamTest, AStreamThatFailsEnds)
{
    ScriptedServer server(withSilence(NEVER));
    RawClient client = openStream(server);
    server.events().m_Fails = true;
    server.server().wake();
    EXPECT_EQ(client.receiveAll(), "");
    EXPECT_EQ(HostTest::askOnce(server.url(), "/").m_Status, 200U);
}

} // namespace
