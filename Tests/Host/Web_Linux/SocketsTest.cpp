#include "Web/Sockets.h"

#include "Base/Failure.h"
#include "Host/Web_Linux/ScriptedServer.h"
#include "Support/TemporaryFolder.h"
#include "Web_Linux/Peer.h"

#include <gmock/gmock.h>

#include <cstdlib>
#include <thread>

#include <grp.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

namespace {

using Host::Web::ServerSettings;
using HostTest::RawClient;
using HostTest::rawRequest;
using HostTest::ScriptedServer;
using testing::HasSubstr;

class SocketsTest : public testing::Test
{
protected:
    ServerSettings settings(bool isTrusted) const
    {
        ServerSettings result;
        result.m_LocalSocket = m_Path;
        result.m_IsTrustedPeer = [=](Host::Web::Sockets::Native) { return isTrusted; };
        return result;
    }

    unsigned ask() const
    {
        RawClient client(m_Path);
        client.send(rawRequest("/"));
        return client.receive().m_Status;
    }

    std::string failure() const
    {
        try {
            const ScriptedServer server(settings(false));
            return "none";
        } catch (const Host::Failure& reason) {
            return reason.what();
        }
    }

    TestSupport::CTemporaryFolder m_Folder;
    const std::filesystem::path m_Path = m_Folder.Path() / "serve.sock";
};

TEST_F(SocketsTest, EveryLocalUserMayReadAndSomeMayChange)
{
    for (const bool isTrusted : {false, true}) {
        ScriptedServer server(settings(isTrusted));
        EXPECT_EQ(ask(), 200U);
        EXPECT_TRUE(server.requests().at(0).m_Local);
        EXPECT_EQ(server.requests().at(0).m_MayChange, isTrusted);
        struct stat state
        {};
        ASSERT_EQ(::stat(m_Path.c_str(), &state), 0);
        EXPECT_EQ(state.st_mode & 07777U, 0666U);
    }
    EXPECT_FALSE(std::filesystem::exists(m_Path));
}

TEST_F(SocketsTest, TheFileOfADeadProcessIsReplaced)
{
    (void)::close(static_cast<int>(Host::Web::Sockets::listenLocally(m_Path)));
    ASSERT_TRUE(std::filesystem::exists(m_Path));
    const ScriptedServer server(settings(false));
    EXPECT_EQ(ask(), 200U);
}

TEST_F(SocketsTest, AnotherServerAndAStrangersFileStay)
{
    {
        const ScriptedServer server(settings(false));
        EXPECT_THAT(failure(), HasSubstr("serve.sock: another process listens there."));
        EXPECT_EQ(ask(), 200U);
    }
    m_Folder.Write("serve.sock", "precious");
    EXPECT_THAT(failure(), HasSubstr("serve.sock: Address already in use."));
    EXPECT_EQ(m_Folder.Read("serve.sock"), "precious");
}

TEST_F(SocketsTest, APathThatIsTooLongIsRefused)
{
    EXPECT_THROW(Host::Web::Sockets::listenLocally(m_Folder.Path() / std::string(120, 'x')), Host::Failure);
    EXPECT_THROW(Host::Web::Sockets::listenLocally(m_Folder.Path() / "nowhere" / "x"), Host::Failure);
}

TEST_F(SocketsTest, ASocketOfTheServiceManagerIsServedAndItsFileStays)
{
    {
        ServerSettings handed;
        handed.m_HandedOver = {Host::Web::Sockets::listenLocally(m_Path)};
        const ScriptedServer server(handed);
        EXPECT_EQ(ask(), 200U);
    }
    EXPECT_TRUE(std::filesystem::exists(m_Path));
    EXPECT_THROW(RawClient{m_Path}, std::system_error);
}

TEST_F(SocketsTest, TheServiceManagersSocketsAreTakenOnceAndOnlyByTheProcessThatIsMeant)
{
    const auto hand = [](pid_t process, const char* count) {
        (void)::setenv("LISTEN_PID", std::to_string(process).c_str(), 1);
        (void)::setenv("LISTEN_FDS", count, 1);
        return Host::Web::Sockets::handedOver();
    };
    EXPECT_THAT(hand(::getpid(), "2"), testing::ElementsAre(3, 4));
    EXPECT_EQ(std::getenv("LISTEN_FDS"), nullptr);
    EXPECT_THAT(Host::Web::Sockets::handedOver(), testing::IsEmpty());
    EXPECT_THAT(hand(::getpid() + 1, "2"), testing::IsEmpty());
    EXPECT_THAT(hand(::getpid(), "x"), testing::IsEmpty());
}

/** Asks as another user of this machine, which only root can try. */
TEST_F(SocketsTest, TheSystemTellsTheServerWhoAsks)
{
    constexpr uid_t nobody = 65534;
    ServerSettings real;
    real.m_LocalSocket = m_Path;
    ScriptedServer server(real);
    std::filesystem::permissions(m_Folder.Path(), std::filesystem::perms::others_exec,
                                 std::filesystem::perm_options::add);
    EXPECT_EQ(ask(), 200U);
    EXPECT_TRUE(server.requests().at(0).m_MayChange);
    if (::geteuid() != 0)
        return;
    // The system call changes this thread alone.
    std::thread([&] {
        ASSERT_EQ(::syscall(SYS_setgroups, 0, nullptr), 0);
        ASSERT_EQ(::syscall(SYS_setresgid, nobody, nobody, nobody), 0);
        ASSERT_EQ(::syscall(SYS_setresuid, nobody, nobody, nobody), 0);
        EXPECT_NO_THROW(EXPECT_EQ(ask(), 200U));
    }).join();
    EXPECT_FALSE(server.requests().at(1).m_MayChange);
}

} // namespace
