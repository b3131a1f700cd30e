#include "Web/Client.h"

#include "Base/Failure.h"
#include "Host/Web/FakeView.h"
#include "Support/TemporaryFolder.h"
#include "Web/Routes.h"
#include "Web/Server.h"
#include "Web/SetProperty.h"

#include <gmock/gmock.h>
#include <nlohmann/json.hpp>

#include <condition_variable>
#include <thread>

#include <sys/socket.h>
#include <unistd.h>

namespace {

using Host::ExitCode;
using Host::Failure;
using Host::Web::FollowEnd;
using testing::ElementsAre;
using testing::HasSubstr;

/** A service and its client. */
class ClientTest : public testing::Test
{
protected:
    ClientTest() { (void)m_Stop.Init(false, true); }

    void start(bool isTrusted)
    {
        Host::Web::ServerSettings settings;
        settings.m_Port = 0;
        settings.m_LocalSocket = m_Path;
        settings.m_IsTrustedPeer = [=](Host::Web::Sockets::Native) { return isTrusted; };
        m_Server.emplace(settings, Host::Web::routes(m_View, {}));
    }

    template<typename Call>
    static Failure failureOf(Call call)
    {
        try {
            call();
        } catch (const Failure& failure) {
            return failure;
        }
        return {ExitCode::Done, "none"};
    }

    TestSupport::CTemporaryFolder m_Folder;
    const std::filesystem::path m_Path = m_Folder.Path() / "serve.sock";
    const Host::Web::Client m_Client{m_Path};
    HostTest::FakeView m_View;
    std::optional<Host::Web::Server> m_Server;
    TLX::Threading::CEvent m_Stop;
};

TEST_F(ClientTest, ReadsAndChanges)
{
    start(true);
    EXPECT_TRUE(m_Client.isThere());
    m_View.addEntry(std::string(100'000, 'x')); // more than one piece
    const auto journal = nlohmann::json::parse(m_Client.get("/api/v1/journal?after=0"));
    EXPECT_EQ(journal.at("entries").at(0).at("text"), std::string(100'000, 'x'));
    const std::string answer = m_Client.put(Host::Web::propertyPath({"a b", "c"}), R"({"value": "1"})");
    EXPECT_EQ(nlohmann::json::parse(answer).at("property").at("value"), 60);
    EXPECT_THAT(m_View.m_Set, ElementsAre("a b c 1"));
}

TEST_F(ClientTest, ARefusalIsAFailureWithItsReason)
{
    start(false);
    const Failure absent = failureOf([&] { m_Client.get("/nowhere"); });
    EXPECT_EQ(absent.exitCode(), ExitCode::NoSuchObject);
    EXPECT_STREQ(absent.what(), "There is nothing at this path.");
    const Failure denied = failureOf([&] {
        m_Client.put(Host::Web::propertyPath({"a", "b"}), R"({"value": "1"})");
    });
    EXPECT_EQ(denied.exitCode(), ExitCode::NoPermission);
    EXPECT_THAT(denied.what(), HasSubstr("group ostrel"));
    EXPECT_EQ(failureOf([&] { m_Client.follow("/nowhere", {}, m_Stop); }).exitCode(), ExitCode::NoSuchObject);
}

TEST_F(ClientTest, WithoutAServiceItSaysSo)
{
    EXPECT_FALSE(m_Client.isThere());
    EXPECT_THAT(
        failureOf([&] { m_Client.get("/"); }).what(),
        HasSubstr("No service can be reached at " + m_Path.string() + ": No such file or directory."));
}

TEST_F(ClientTest, FollowsAStreamUntilItIsAskedToEnd)
{
    start(false);
    m_View.addEntry("one");
    m_View.addEntry("two");
    std::vector<std::string> identifiers;
    const FollowEnd end = m_Client.follow(
        "/api/v1/journal/stream?after=0",
        [&](const Host::Web::SentEvent& event) {
            identifiers.push_back(event.m_Id);
            EXPECT_EQ(std::to_string(nlohmann::json::parse(event.m_Data).at("number").get<int>()),
                      event.m_Id);
            if (identifiers.size() == 2) {
                m_View.addEntry("three");
                m_Server->wake();
            }
            if (identifiers.size() == 3)
                m_Stop.Set();
        },
        m_Stop);
    EXPECT_EQ(end, FollowEnd::Asked);
    EXPECT_THAT(identifiers, ElementsAre("1", "2", "3"));
}

TEST_F(ClientTest, NoticesThatTheServiceEndsAStream)
{
    start(false);
    m_View.addEntry("one");
    std::thread ending;
    const FollowEnd end = m_Client.follow(
        "/api/v1/journal/stream?after=0",
        [&](const Host::Web::SentEvent&) { ending = std::thread([&] { m_Server->stop(); }); }, m_Stop);
    ending.join();
    EXPECT_EQ(end, FollowEnd::Service);
}

TEST_F(ClientTest, AFailureOfTheReceiverEndsTheStream)
{
    start(false);
    m_View.addEntry("one");
    const auto failing = [](const Host::Web::SentEvent&) { throw std::runtime_error("no room"); };
    EXPECT_THROW(m_Client.follow("/api/v1/journal/stream?after=0", failing, m_Stop), std::runtime_error);
}

/** Answers one client with a text, and goes away. */
std::thread answerOnce(const std::filesystem::path& path, const std::string& text)
{
    const auto listener = static_cast<int>(Host::Web::Sockets::listenLocally(path));
    return std::thread([=] {
        const int client = ::accept(listener, nullptr, nullptr);
        std::array<char, 4096> request{};
        (void)::recv(client, request.data(), request.size(), 0);
        (void)::send(client, text.data(), text.size(), MSG_NOSIGNAL);
        (void)::close(client);
        (void)::close(listener);
    });
}

TEST_F(ClientTest, AnAnswerThatIsCutIsNoAnswer)
{
    for (const char* text :
         {"", "HTTP/1.1 200 OK\r\n", "HTTP/1.1 200 OK\r\nContent-Length: 3\r\n\r\nab",
          "HTTP/1.1 200 OK\r\n\r\nab", "HTTP/1.1 200 OK\r\nContent-Length: 3\r\n\r\nabcd", "hello"}) {
        std::thread service = answerOnce(m_Path, text);
        EXPECT_EQ(failureOf([&] { m_Client.get("/"); }).exitCode(), ExitCode::RequestFailed) << text;
        service.join();
    }
}

} // namespace
