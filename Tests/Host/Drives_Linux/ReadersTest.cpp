#include "Drives_Linux/Readers.h"

#include "Drives_Linux/ReaderClient.h"
#include "Host/Built.h"
#include "Support/TemporaryFolder.h"

#include <TLX/Clock.h>
#include <TLXX/Linux/DiskOwner.h>

#include <gtest/gtest.h>

#include <array>
#include <csignal>
#include <fstream>
#include <string>
#include <system_error>

#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using Host::PrivateReader;
using TLX::Linux::CDescriptor;

const TLXX::CDriveAddress NOBODY = {"/dev/nvme4000000n1",
                                    TLXX::Linux::CDiskOwner{4'000'000, 1, 1}.Instance()};

std::uint32_t statusFrom(Host::ReaderClient& client)
{
    client.Submit(NOBODY, {{TLXX::EQuery::IdentifyController, 0}});
    const auto answer = client.Wait(TLX::Misc::monotonic() + 60'000);
    EXPECT_TRUE(answer);
    return answer ? answer->m_Status : 0;
}

/** The process at the other end of a connection. */
pid_t peer(const CDescriptor& connection)
{
    ucred credentials{};
    socklen_t size = sizeof credentials;
    EXPECT_EQ(::getsockopt(connection.Get(), SOL_SOCKET, SO_PEERCRED, &credentials, &size), 0);
    return credentials.pid;
}

TEST(Readers, APrivateOneAnswers)
{
    PrivateReader reader(HostTest::Built::READER);
    Host::ReaderClient client([&] { return reader.start(); });
    EXPECT_EQ(statusFrom(client), TLXX::STATUS_NO_DEVICE);
}

TEST(Readers, APrivateOneThatIsGoneIsStartedAgain)
{
    PrivateReader reader(HostTest::Built::READER);
    int starts = 0;
    int ours = -1;
    Host::ReaderClient client([&] {
        ++starts;
        CDescriptor connection = reader.start();
        ours = connection.Get();
        return connection;
    });
    EXPECT_EQ(statusFrom(client), TLXX::STATUS_NO_DEVICE);
    // As when it has died: nothing comes from it any more.
    EXPECT_EQ(::shutdown(ours, SHUT_RDWR), 0);
    EXPECT_EQ(statusFrom(client), TLXX::STATUS_NO_DEVICE) << "the next one is asked at once";
    EXPECT_EQ(starts, 2);
}

TEST(Readers, APrivateOneEndsWithItsConnectionAndKeepsNothingOpen)
{
    std::array<int, 2> pipe{};
    // Without close-on-exec, like a descriptor that a shell has redirected.
    ASSERT_EQ(::pipe(pipe.data()), 0);
    const CDescriptor readEnd(pipe[0]);
    CDescriptor writeEnd(pipe[1]);
    PrivateReader reader(HostTest::Built::READER);
    {
        const CDescriptor connection = reader.start();
        EXPECT_EQ(peer(connection), ::getpid()) << "the pair was made here";
        writeEnd = {};
        char byte = 0;
        EXPECT_EQ(::read(readEnd.Get(), &byte, 1), 0) << "the reader does not have the other end";
    }
    int status = -1;
    EXPECT_GT(::wait(&status), 0);
    EXPECT_EQ(status, 0);
}

TEST(Readers, AMissingProgramIsTold)
{
    PrivateReader reader("/nowhere/ostrel-reader");
    try {
        (void)reader.start();
        FAIL() << "there is no such program";
    } catch (const std::system_error& error) {
        EXPECT_EQ(error.code().value(), ENOENT);
    }
}

TEST(Readers, AConnectionToASocketIsMadeOrItsFailureTold)
{
    const TestSupport::CTemporaryFolder folder;
    const std::filesystem::path path = folder.Path() / "reader.sock";
    const auto failure = [](const std::filesystem::path& socket) {
        try {
            (void)Host::connectReader(socket);
            return 0;
        } catch (const std::system_error& error) {
            return error.code().value();
        }
    };
    EXPECT_EQ(failure(path), ENOENT);
    EXPECT_EQ(failure(std::string(200, 'x')), ENAMETOOLONG);
    const CDescriptor listener(::socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0));
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    path.native().copy(std::data(address.sun_path), sizeof address.sun_path - 1);
    ASSERT_EQ(::bind(listener.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof address), 0);
    EXPECT_EQ(failure(path), ECONNREFUSED);
    ASSERT_EQ(::listen(listener.Get(), 1), 0);
    EXPECT_TRUE(Host::connectReader(path).Valid());
}

} // namespace
