#include <TLX/Event.h>
#include <TLXX/Linux/UeventAnnouncements.h>

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <memory>
#include <string_view>

#include <fcntl.h>
#include <sched.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using namespace std::string_view_literals;

constexpr auto CONTROLLER_CAME = "add@/nvme0\0ACTION=add\0DEVPATH=/nvme0\0SUBSYSTEM=nvme\0"sv;
constexpr auto PARTITION_CAME = "add@/x\0ACTION=add\0DEVPATH=/x\0SUBSYSTEM=block\0DEVTYPE=partition\0"sv;

class UeventAnnouncementsTest : public testing::Test
{
protected:
    UeventAnnouncementsTest()
    {
        std::array<int, 2> sockets{};
        EXPECT_EQ(::socketpair(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0, sockets.data()), 0);
        EXPECT_EQ(::fcntl(sockets[0], F_SETFL, O_NONBLOCK), 0);
        m_Kernel = TLX::Linux::CDescriptor(sockets[1]);
        EXPECT_EQ(m_Announced.Init(false, false), TLX::Threading::WaitResult::Taken);
        m_Announcements =
            std::make_unique<TLXX::Linux::CUeventAnnouncements>(TLX::Linux::CDescriptor(sockets[0]), [this] {
                ++m_Count;
                m_Announced.Set();
            });
    }

    void Send(std::string_view message) const
    {
        EXPECT_EQ(::send(m_Kernel.Get(), message.data(), message.size(), 0),
                  static_cast<ssize_t>(message.size()));
    }

    TLX::Linux::CDescriptor m_Kernel;
    TLX::Threading::CEvent m_Announced;
    std::atomic<int> m_Count = 0;
    std::unique_ptr<TLXX::Linux::CUeventAnnouncements> m_Announcements;
};

TEST_F(UeventAnnouncementsTest, AnnouncesDrivesAndNothingElse)
{
    Send(PARTITION_CAME);
    Send(CONTROLLER_CAME);
    EXPECT_EQ(m_Announced.Wait(), TLX::Threading::WaitResult::Taken);
    EXPECT_EQ(m_Count, 1);
}

TEST_F(UeventAnnouncementsTest, GoesOnAfterOneAnnouncement)
{
    for (int i = 0; i < 3; ++i) {
        Send(CONTROLLER_CAME);
        EXPECT_EQ(m_Announced.Wait(), TLX::Threading::WaitResult::Taken);
    }
    EXPECT_EQ(m_Count, 3);
}

TEST_F(UeventAnnouncementsTest, EndsWhenTheSenderIsGoneAndWhenNothingEverCame)
{
    m_Kernel = {};
    m_Announcements.reset();
    EXPECT_EQ(m_Count, 0);
}

TEST(UeventSocketTest, IsToBeHadWithoutMessagesOfOtherProcesses)
{
    const TLX::Linux::CDescriptor socket = TLXX::Linux::openUeventSocket();
    if (!socket.Valid())
        GTEST_SKIP() << "this machine lets no process listen to the kernel's device messages";
    EXPECT_NE(::fcntl(socket.Get(), F_GETFL) & O_NONBLOCK, 0);
    EXPECT_NE(::fcntl(socket.Get(), F_GETFD) & FD_CLOEXEC, 0);
}

TEST(UeventSocketTest, IsNotToBeHadInAContainerOfAnOrdinaryUser)
{
    constexpr int refused = 2;
    const pid_t child = ::fork();
    if (child == 0) {
        if (::unshare(CLONE_NEWUSER | CLONE_NEWNET) != 0)
            ::_exit(refused);
        ::_exit(TLXX::Linux::openUeventSocket().Valid() ? 1 : 0);
    }
    int status = -1;
    ASSERT_EQ(::waitpid(child, &status, 0), child);
    if (WIFEXITED(status) && WEXITSTATUS(status) == refused)
        GTEST_SKIP() << "this machine lets no ordinary user have namespaces";
    EXPECT_EQ(status, 0);
}

} // namespace
