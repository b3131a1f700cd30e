#include "Host/Web_Linux/ScriptedServer.h"
#include "Support/TemporaryFolder.h"
#include "Web/Server.h"

#include <gtest/gtest.h>

#include <atomic>
#include <filesystem>
#include <list>

// Each kind of caller has places of its own.
namespace {

using Host::Web::ServerSettings;
using HostTest::NEVER;
using HostTest::RawClient;
using HostTest::rawRequest;
using HostTest::ScriptedServer;

/** A server with a local socket, where the test says whom the server trusts. */
class ServerCallersTest : public testing::Test
{
protected:
    ServerSettings settings()
    {
        ServerSettings result;
        result.m_Limits.m_Request = result.m_Limits.m_Silence = NEVER;
        result.m_Limits.m_Connections = result.m_Limits.m_Streams = 2;
        result.m_LocalSocket = m_Path;
        result.m_IsTrustedPeer = [this](Host::Web::Sockets::Native) { return m_IsTrusted.load(); };
        return result;
    }

    /** The status of the answer to a client that keeps its connection. */
    template<typename Place>
    unsigned ask(const Place& place, const char* path)
    {
        m_Clients.emplace_back(place).send(rawRequest(path));
        return m_Clients.back().receive().m_Status;
    }

    /** Takes all places of a caller; the next of its kind must find none. */
    template<typename Place>
    void take(const Place& place, const char* path)
    {
        EXPECT_EQ(ask(place, path), 200U);
        EXPECT_EQ(ask(place, path), 200U);
        EXPECT_EQ(ask(place, path), 503U);
    }

    TestSupport::CTemporaryFolder m_Folder;
    const std::filesystem::path m_Path = m_Folder.Path() / "serve.sock";
    std::atomic<bool> m_IsTrusted = false;
    std::list<RawClient> m_Clients;
};

TEST_F(ServerCallersTest, ConnectionsOfOthersLeaveThePlacesOfThoseWhoMayChange)
{
    ScriptedServer server(settings());
    take(server.url(), "/");
    take(m_Path, "/");
    m_IsTrusted = true;
    take(m_Path, "/");
}

TEST_F(ServerCallersTest, StreamsOfOthersLeaveThePlacesOfThoseWhoMayChange)
{
    ScriptedServer server(settings());
    take(server.url(), "/stream");
    take(m_Path, "/stream");
    m_IsTrusted = true;
    take(m_Path, "/stream");
}

TEST_F(ServerCallersTest, RefusalsOfOthersLeaveRoomForTheRefusalOfEachCaller)
{
    ScriptedServer server(settings());
    take(server.url(), "/");
    for (int i = 0; i < 40; ++i)
        m_Clients.emplace_back(server.url());
    take(m_Path, "/");
}

} // namespace
