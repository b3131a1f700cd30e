#include "Connection.h"
#include "Support/TemporaryFolder.h"

#include <TLXX/Linux/ControllerNode.h>
#include <TLXX/NvmeQuery.h>

#include <gtest/gtest.h>

#include <cerrno>
#include <fstream>
#include <functional>
#include <thread>

#include <Reader/Restrictions.h>
#include <fcntl.h>
#include <spawn.h>
#include <sys/ioctl.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

namespace {

using namespace ReaderTest;

/** The program, with descriptor 3 when one is given. */
pid_t start(int socket, const std::vector<std::string>& words = {})
{
    posix_spawn_file_actions_t actions{};
    (void)::posix_spawn_file_actions_init(&actions);
    if (socket >= 0)
        (void)::posix_spawn_file_actions_adddup2(&actions, socket, 3);
    std::string program = OSTREL_READER;
    std::vector<std::string> copies = words;
    std::vector<char*> arguments = {program.data()};
    for (std::string& word : copies)
        arguments.push_back(word.data());
    arguments.push_back(nullptr);
    pid_t child = -1;
    EXPECT_EQ(::posix_spawn(&child, OSTREL_READER, &actions, nullptr, arguments.data(), environ), 0);
    (void)::posix_spawn_file_actions_destroy(&actions);
    return child;
}

int codeOf(pid_t child)
{
    int status = 0;
    EXPECT_EQ(::waitpid(child, &status, 0), child);
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

std::string statusLine(pid_t process, const std::string& key)
{
    std::ifstream file("/proc/" + std::to_string(process) + "/status");
    for (std::string line; std::getline(file, line);)
        if (line.starts_with(key + ":\t"))
            return line.substr(key.size() + 2);
    return {};
}

TEST(ReaderProgram, ServesOneClientWithRestrictions)
{
    auto [ours, theirs] = connectedPair();
    const pid_t child = start(theirs.Get());
    theirs = {};
    {
        const Connection client(std::move(ours));
        client.send(identify(4'000'000, 9));
        EXPECT_EQ(client.answer().m_Status, TLXX::STATUS_NO_DEVICE);
        EXPECT_EQ(statusLine(child, "NoNewPrivs"), "1");
        EXPECT_EQ(statusLine(child, "Seccomp"), "2");
        const unsigned long long held = std::stoull(statusLine(child, "CapPrm"), nullptr, 16);
        EXPECT_EQ(held & ~(1ULL << 21U), 0U) << "only CAP_SYS_ADMIN, where there was any";
        EXPECT_EQ(std::stoull(statusLine(child, "CapInh"), nullptr, 16), 0U);
    }
    EXPECT_EQ(codeOf(child), 0);
}

TEST(ReaderProgram, ListensAtAPath)
{
    const TestSupport::CTemporaryFolder folder;
    const std::string path = (folder.Path() / "reader.sock").string();
    const pid_t child = start(-1, {"--socket", path});
    while (!std::filesystem::exists(path))
        std::this_thread::yield();
    // It is bound before it listens.
    const sockaddr_un address = addressOf(path);
    CDescriptor socket(::socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0));
    while (::connect(socket.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0)
        std::this_thread::yield();
    const Connection client(std::move(socket));
    client.send(identify(4'000'000, 9));
    EXPECT_EQ(client.answer().m_Sequence, 9U);
    EXPECT_EQ(::kill(child, SIGTERM), 0);
    EXPECT_EQ(codeOf(child), -SIGTERM);
}

TEST(ReaderProgram, SaysWhatItCannotUse)
{
    EXPECT_EQ(codeOf(start(-1, {"--help"})), 2);
    EXPECT_EQ(codeOf(start(0)), 1) << "no socket";
    EXPECT_EQ(codeOf(start(-1, {"--socket", "/nowhere/at/all"})), 1);
    EXPECT_EQ(codeOf(start(-1, {"--socket", std::string(200, 'x')})), 1);
}

/** The error of `call` in a process with the restrictions; 0 when it succeeds. */
int restricted(const std::function<long()>& call)
{
    const pid_t child = ::fork();
    if (child == 0) {
        int code = 255;
        try {
            Reader::restrictProcess();
            code = call() < 0 ? errno : 0;
        } catch (const std::system_error&) {
        }
        ::_exit(code);
    }
    return codeOf(child);
}

TEST(ReaderRestrictions, LeaveWhatItNeeds)
{
    EXPECT_EQ(restricted([] { return ::open("/proc/self/stat", O_RDONLY | O_CLOEXEC); }), 0);
    EXPECT_EQ(restricted([] {
                  std::thread([] {}).join();
                  return 0;
              }),
              0);
    EXPECT_EQ(restricted([] {
                  std::vector<char> memory(10'000'000, 'x');
                  return static_cast<long>(memory.back());
              }),
              0);
    EXPECT_EQ(restricted([] { return ::ioctl(0, TLXX::Linux::CONTROLLER_IOCTL, nullptr); }), ENOTTY)
        << "the file says so, not the filter";
}

TEST(ReaderRestrictions, TakeEverythingElse)
{
    EXPECT_EQ(restricted([] { return ::open("/dev/null", O_WRONLY); }), EPERM);
    EXPECT_EQ(restricted([] { return ::open("/dev/null", O_RDWR); }), EPERM);
    EXPECT_EQ(restricted([] { return ::open("/tmp", O_TMPFILE | O_RDWR, 0600); }), EPERM);
    EXPECT_EQ(restricted([] { return ::open("/dev/null", O_RDONLY | O_TRUNC); }), EPERM);
    EXPECT_EQ(restricted([] { return ::ioctl(0, FIONREAD, nullptr); }), EPERM);
    EXPECT_EQ(restricted([] { return ::socket(AF_UNIX, SOCK_STREAM, 0); }), EPERM);
    EXPECT_EQ(restricted([] { return ::fork(); }), EPERM);
    EXPECT_EQ(restricted([] { return ::execl("/bin/true", "true", nullptr); }), EPERM);
    EXPECT_EQ(restricted([] { return ::unlink("/nowhere"); }), EPERM);
    EXPECT_EQ(restricted([] { return ::mkdir("/nowhere", 0700); }), EPERM);
    EXPECT_EQ(restricted([] { return ::kill(1, 0); }), EPERM);
    EXPECT_EQ(restricted([] { return ::syscall(SYS_setuid, 0); }), EPERM);
    EXPECT_EQ(restricted([] {
                  void* const page =
                      ::mmap(nullptr, 4096, PROT_READ | PROT_EXEC, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
                  return page == MAP_FAILED ? -1 : 0;
              }),
              EPERM);
}

} // namespace
