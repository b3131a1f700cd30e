#include "Host/Web/FakeView.h"
#include "Host/Web_Linux/RawClient.h"
#include "Web/Routes.h"
#include "Web/Server.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <atomic>
#include <list>
#include <thread>

// Many clients at once, good and bad ones, while the drives change.
namespace {

using HostTest::FakeView;
using HostTest::RawAnswer;
using HostTest::RawClient;
using HostTest::rawRequest;

constexpr int DRIVES = 8;
constexpr int THREADS = 8;
constexpr int CLIENTS_A_THREAD = 8;
constexpr int ROUNDS = 5;
constexpr int STREAMS = 8;
constexpr std::uint64_t ENTRIES = 300;

/** All drives have the round's number in their serial numbers. */
std::vector<HostTest::DriveObjects> fleet(std::uint64_t round)
{
    std::vector<HostTest::DriveObjects> drives;
    for (int i = 0; i < DRIVES; ++i)
        drives.emplace_back(2 * i + 1, std::to_string(round) + "-" + std::to_string(i),
                            "/dev/nvme" + std::to_string(i) + "n1");
    return drives;
}

class LoadTest : public testing::Test
{
protected:
    LoadTest() : m_Server(settings(), Host::Web::routes(m_View, {})) { m_View.publish(1, fleet(1)); }

    static Host::Web::ServerSettings settings()
    {
        Host::Web::ServerSettings settings;
        settings.m_Port = 0;
        settings.m_Limits.m_Connections = 128; // room for the bad clients beside the good ones
        return settings;
    }

    /** Publishes rounds until the good clients are done. */
    void churn()
    {
        for (std::uint64_t round = 2; !m_IsDone; ++round)
            m_View.publish(round, fleet(round));
    }

    /** Clients that ask, and never see anything but good answers of one round. */
    void askOften()
    {
        std::list<RawClient> clients;
        for (int i = 0; i < CLIENTS_A_THREAD; ++i)
            clients.emplace_back(m_Server.url());
        for (int i = 0; i < ROUNDS; ++i)
            for (const char* path :
                 {"/api/v1/status", "/api/v1/drives", "/api/v1/journal?limit=10", "/metrics"}) {
                for (RawClient& client : clients)
                    client.send(rawRequest(path));
                for (RawClient& client : clients)
                    check(path, client.receive());
            }
    }

    void check(std::string_view path, const RawAnswer& answer)
    {
        ++m_Answers;
        ASSERT_EQ(answer.m_Status, 200U) << path << answer.m_Body;
        if (path != "/api/v1/drives")
            return;
        const auto drives = nlohmann::json::parse(answer.m_Body).at("drives");
        ASSERT_EQ(drives.size(), static_cast<std::size_t>(DRIVES));
        const std::string first = drives.front().at("serial");
        const std::string last = drives.back().at("serial");
        EXPECT_EQ(first.substr(0, first.find('-')), last.substr(0, last.find('-')))
            << "a mixture of two rounds";
    }

    /** Clients that begin requests, and go, or stay and say nothing. */
    void misbehave()
    {
        std::list<RawClient> stuck;
        for (const char* path : {"/api/v1/drives", "/api/v1/journal/stream?after=0"})
            for (int i = 0; i < 8; ++i)
                stuck.emplace_back(m_Server.url()).send(i % 2 == 0 ? rawRequest(path) : "GET / HT");
        while (!m_IsDone) {
            RawClient client(m_Server.url());
            client.send(rawRequest("/metrics"));
            client.vanish();
        }
    }

    /** A client that follows the journal from its beginning to its end. */
    void follow()
    {
        RawClient client(m_Server.url());
        client.send(rawRequest("/api/v1/journal/stream?after=0"));
        EXPECT_EQ(client.receive().m_Status, 200U);
        for (std::uint64_t number = 1; number <= ENTRIES; ++number) {
            ASSERT_EQ(client.receiveUntil("\n"), "id: " + std::to_string(number) + "\n");
            (void)client.receiveUntil("\n\n");
        }
        ++m_Followed;
    }

    void tell()
    {
        for (std::uint64_t i = 0; i < ENTRIES; ++i) {
            m_View.addEntry("x");
            m_Server.wake();
        }
    }

    FakeView m_View;
    Host::Web::Server m_Server;
    std::atomic<bool> m_IsDone = false;
    std::atomic<int> m_Answers = 0;
    std::atomic<int> m_Followed = 0;
};

TEST_F(LoadTest, EveryGoodClientIsAnsweredWhateverOthersDo)
{
    std::list<std::thread> good;
    std::list<std::thread> others;
    others.emplace_back([this] { churn(); });
    others.emplace_back([this] { misbehave(); });
    for (int i = 0; i < THREADS; ++i)
        good.emplace_back([this] { askOften(); });
    for (int i = 0; i < STREAMS; ++i)
        good.emplace_back([this] { follow(); });
    good.emplace_back([this] { tell(); });
    for (std::thread& thread : good)
        thread.join();
    m_IsDone = true;
    for (std::thread& thread : others)
        thread.join();
    EXPECT_EQ(m_Answers, THREADS * CLIENTS_A_THREAD * ROUNDS * 4);
    EXPECT_EQ(m_Followed, STREAMS);
}

} // namespace
