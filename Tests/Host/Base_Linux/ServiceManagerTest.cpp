#include "Base/ServiceManager.h"

#include "Support/TemporaryFolder.h"

#include <TLX/Linux/Descriptor.h>

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <cstdlib>
#include <string>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

namespace {

using Host::Platform::ServiceManager;
using testing::StartsWith;

/** The receiving end of a service manager. */
class ServiceManagerTest : public testing::Test
{
protected:
    void listenAt(const std::string& address)
    {
        sockaddr_un place{};
        place.sun_family = AF_UNIX;
        address.copy(place.sun_path, sizeof place.sun_path - 1);
        if (address.front() == '@')
            place.sun_path[0] = '\0';
        m_Socket = TLX::Linux::CDescriptor(socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0));
        ASSERT_EQ(bind(m_Socket.Get(), reinterpret_cast<const sockaddr*>(&place),
                       static_cast<socklen_t>(offsetof(sockaddr_un, sun_path) + address.size())),
                  0);
        setenv("NOTIFY_SOCKET", address.c_str(), 1);
    }

    std::string received() const
    {
        std::array<char, 4096> message{};
        const ssize_t size = recv(m_Socket.Get(), message.data(), message.size(), MSG_DONTWAIT);
        return size < 0 ? "" : std::string(message.data(), static_cast<std::size_t>(size));
    }

    void TearDown() override
    {
        for (const char* name : {"NOTIFY_SOCKET", "WATCHDOG_USEC", "WATCHDOG_PID"})
            unsetenv(name);
    }

    TestSupport::CTemporaryFolder m_Folder;
    TLX::Linux::CDescriptor m_Socket;
};

TEST_F(ServiceManagerTest, HearsEachNews)
{
    listenAt((m_Folder.Path() / "notify").string());
    ServiceManager manager;
    manager.ready();
    EXPECT_EQ(received(), "READY=1");
    manager.reloading();
    EXPECT_THAT(received(), StartsWith("RELOADING=1\nMONOTONIC_USEC="));
    manager.status("2 drives\nREADY=1");
    EXPECT_EQ(received(), "STATUS=2 drives?READY=1");
    manager.alive();
    EXPECT_EQ(received(), "WATCHDOG=1");
    manager.stopping();
    EXPECT_EQ(received(), "STOPPING=1");
}

TEST_F(ServiceManagerTest, MayListenAtANameOutsideTheFileSystem)
{
    listenAt("@ostrel-test-" + std::to_string(getpid()));
    ServiceManager().ready();
    EXPECT_EQ(received(), "READY=1");
}

TEST_F(ServiceManagerTest, IsNoneWithoutASocket)
{
    ServiceManager manager;
    manager.ready();
    EXPECT_FALSE(manager.lifeSignPeriod());
    setenv("NOTIFY_SOCKET", (m_Folder.Path() / "none").c_str(), 1);
    ServiceManager().ready();
}

TEST_F(ServiceManagerTest, TellsOnlyThisProcessHowOftenItWantsLifeSigns)
{
    setenv("WATCHDOG_USEC", "3000000", 1);
    EXPECT_EQ(ServiceManager().lifeSignPeriod(), 3000U);
    EXPECT_EQ(std::getenv("WATCHDOG_USEC"), nullptr);
    setenv("WATCHDOG_USEC", "3000000", 1);
    setenv("WATCHDOG_PID", std::to_string(getpid()).c_str(), 1);
    EXPECT_EQ(ServiceManager().lifeSignPeriod(), 3000U);
    setenv("WATCHDOG_USEC", "3000000", 1);
    setenv("WATCHDOG_PID", "1", 1);
    EXPECT_FALSE(ServiceManager().lifeSignPeriod());
}

} // namespace
