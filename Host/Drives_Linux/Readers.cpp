#include "Drives_Linux/Readers.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <spawn.h>
#include <sys/socket.h>
#include <sys/un.h>
#include <sys/wait.h>
#include <unistd.h>

namespace Host {
namespace {

using TLX::Linux::CDescriptor;

/** Where a reader expects its socket. */
constexpr int HANDED_OVER = 3;

[[noreturn]] void fail(int error, const char* what)
{
    throw std::system_error(error, std::generic_category(), what);
}

/** What is different in a child. */
class Spawning
{
public:
    explicit Spawning(int socket)
    {
        (void)::posix_spawn_file_actions_init(&m_Actions);
        (void)::posix_spawnattr_init(&m_Attributes);
        // A reader that outlives this process must not keep an output of it open.
        for (const int standard : {STDIN_FILENO, STDOUT_FILENO, STDERR_FILENO})
            (void)::posix_spawn_file_actions_addopen(&m_Actions, standard, "/dev/null", O_RDWR, 0);
        (void)::posix_spawn_file_actions_adddup2(&m_Actions, socket, HANDED_OVER);
        (void)::posix_spawn_file_actions_addclosefrom_np(&m_Actions, HANDED_OVER + 1);
        // A key that ends this program must not end the reader first.
        sigset_t none;
        sigset_t all;
        (void)sigemptyset(&none);
        (void)sigfillset(&all);
        (void)::posix_spawnattr_setsigmask(&m_Attributes, &none);
        (void)::posix_spawnattr_setsigdefault(&m_Attributes, &all);
        (void)::posix_spawnattr_setflags(&m_Attributes,
                                         POSIX_SPAWN_SETSIGMASK | POSIX_SPAWN_SETSIGDEF | POSIX_SPAWN_SETSID);
    }
    ~Spawning()
    {
        (void)::posix_spawn_file_actions_destroy(&m_Actions);
        (void)::posix_spawnattr_destroy(&m_Attributes);
    }
    Spawning(const Spawning&) = delete;
    Spawning& operator=(const Spawning&) = delete;

    pid_t start(const std::filesystem::path& program) const
    {
        std::string name = program.native();
        std::array<char*, 2> words = {name.data(), nullptr};
        std::array<char*, 1> environment = {nullptr};
        pid_t child = 0;
        const int error = ::posix_spawn(&child, program.c_str(), &m_Actions, &m_Attributes, words.data(),
                                        environment.data());
        if (error != 0)
            fail(error, program.c_str());
        return child;
    }

private:
    posix_spawn_file_actions_t m_Actions{};
    posix_spawnattr_t m_Attributes{};
};

} // namespace

std::filesystem::path usualReader()
{
    return "/run/ostrel/reader.sock";
}

CDescriptor connectReader(const std::filesystem::path& socket)
{
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    if (socket.native().size() >= sizeof address.sun_path)
        fail(ENAMETOOLONG, socket.c_str());
    socket.native().copy(std::data(address.sun_path), socket.native().size());
    CDescriptor connection(::socket(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC | SOCK_NONBLOCK, 0));
    if (!connection.Valid() ||
        ::connect(connection.Get(), reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0)
        fail(errno, socket.c_str());
    return connection;
}

CDescriptor PrivateReader::start()
{
    clearAway();
    std::array<int, 2> ends{};
    if (::socketpair(AF_UNIX, SOCK_SEQPACKET | SOCK_CLOEXEC, 0, ends.data()) != 0)
        fail(errno, "socketpair");
    CDescriptor ours(ends[0]);
    const CDescriptor other(ends[1]);
    // `dup2` to the same number would leave it to be closed in the child.
    const CDescriptor theirs(::fcntl(other.Get(), F_DUPFD_CLOEXEC, HANDED_OVER + 1));
    if (!theirs.Valid())
        fail(errno, "socketpair");
    m_Former = Spawning(theirs.Get()).start(m_Program);
    return ours;
}

void PrivateReader::clearAway()
{
    if (m_Former != 0 && ::waitpid(m_Former, nullptr, WNOHANG) != 0)
        m_Former = 0;
}

} // namespace Host
