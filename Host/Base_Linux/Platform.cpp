#include "Base/Platform.h"

#include <TLX/Linux/Descriptor.h>

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <stdexcept>
#include <system_error>

#include <dlfcn.h>
#include <fcntl.h>
#include <poll.h>
#include <pwd.h>
#include <sys/ioctl.h>
#include <unistd.h>

namespace Host::Platform {

std::vector<std::string> commandLine(int argc, char** argv)
{
    return {argv, argv + argc};
}

std::filesystem::path programFolder()
{
    return std::filesystem::read_symlink("/proc/self/exe").parent_path();
}

namespace {

/** The user's home folder, or the root folder when the system does not know the user. */
std::filesystem::path homeFolder()
{
    if (const char* home = std::getenv("HOME"); home != nullptr && *home != '\0')
        return home;
    std::array<char, 1U << 14U> buffer;
    passwd entry{};
    passwd* found = nullptr;
    (void)getpwuid_r(geteuid(), &entry, buffer.data(), buffer.size(), &found);
    return found != nullptr ? found->pw_dir : "/";
}

} // namespace

std::filesystem::path defaultDataFolder()
{
    if (geteuid() == 0)
        return "/var/lib/ostrel";
    // The XDG base directory specification says that relative paths must be ignored.
    if (const char* state = std::getenv("XDG_STATE_HOME"); state != nullptr && state[0] == '/')
        return std::filesystem::path(state) / "ostrel";
    return homeFolder() / ".local" / "state" / "ostrel";
}

std::filesystem::path newTemporaryFolder(const std::string& name)
{
    std::string path = (std::filesystem::temp_directory_path() / (name + "-XXXXXX")).string();
    if (mkdtemp(path.data()) == nullptr)
        throw std::system_error(errno, std::generic_category(), path);
    return path;
}

std::error_code accessError(const std::filesystem::path& path, Access access)
{
    const int mode = access == Access::Read ? R_OK : access == Access::Write ? W_OK : W_OK | X_OK;
    return faccessat(AT_FDCWD, path.c_str(), mode, AT_EACCESS) == 0
               ? std::error_code()
               : std::error_code(errno, std::generic_category());
}

DynamicLibrary::DynamicLibrary(const std::filesystem::path& file)
    : m_Handle(dlopen(std::filesystem::absolute(file).c_str(), RTLD_NOW | RTLD_LOCAL))
{
    if (m_Handle == nullptr) {
        const char* reason = dlerror();
        throw std::runtime_error(reason != nullptr ? reason : "unknown reason");
    }
}

DynamicLibrary::~DynamicLibrary()
{
    (void)dlclose(m_Handle);
}

void* DynamicLibrary::symbol(const char* name) const
{
    return dlsym(m_Handle, name);
}

struct StandardOutput::Native
{
    explicit Native(Standard which)
        : m_Descriptor(fcntl(which == Standard::Output ? STDOUT_FILENO : STDERR_FILENO, F_DUPFD_CLOEXEC,
                             STDERR_FILENO + 1)),
          m_Name(which == Standard::Output ? "standard output" : "standard error")
    {}

    /** Returns when a write that failed with `error` may be tried again. Throws when it may not. */
    void awaitRoom(int error) const
    {
        if (error == EPIPE)
            throw ReaderGone();
        // Another process that shares the output may have made it non-blocking.
        pollfd output{m_Descriptor.Get(), POLLOUT, 0};
        const bool mayWait = error == EAGAIN && (poll(&output, 1, -1) >= 0 || errno == EINTR);
        if (!mayWait && error != EINTR)
            throw std::system_error(error, std::generic_category(), m_Name);
    }

    const TLX::Linux::CDescriptor m_Descriptor;
    const char* const m_Name;
};

StandardOutput::StandardOutput(Standard which) : m_Native(std::make_unique<Native>(which))
{
    // This stays ignored, because messages about a failed write may go to the same output.
    (void)std::signal(SIGPIPE, SIG_IGN);
}

StandardOutput::~StandardOutput() = default;

void StandardOutput::write(std::string_view text)
{
    while (!text.empty()) {
        const ssize_t written = ::write(m_Native->m_Descriptor.Get(), text.data(), text.size());
        if (written < 0) {
            m_Native->awaitRoom(errno);
            continue;
        }
        text.remove_prefix(static_cast<std::size_t>(written));
    }
}

bool StandardOutput::isTerminal() const
{
    return isatty(m_Native->m_Descriptor.Get()) == 1;
}

unsigned StandardOutput::terminalWidth() const
{
    constexpr unsigned usual = 80;
    winsize size{};
    return ioctl(m_Native->m_Descriptor.Get(), TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col
                                                                                          : usual;
}

bool StandardOutput::showsColours() const
{
    const char* const terminal = std::getenv("TERM");
    return isTerminal() && terminal != nullptr && *terminal != '\0' && std::string_view(terminal) != "dumb";
}

void divertStandardOutput(Elsewhere elsewhere)
{
    if (elsewhere == Elsewhere::StandardError && dup2(STDERR_FILENO, STDOUT_FILENO) >= 0)
        return;
    TLX::Linux::CDescriptor null(open("/dev/null", O_WRONLY | O_CLOEXEC));
    if (!null.Valid())
        throw std::system_error(errno, std::generic_category(), "/dev/null");
    if (null.Get() == STDOUT_FILENO)
        (void)null.Release();
    else
        (void)dup2(null.Get(), STDOUT_FILENO);
}

std::tm localTime(std::time_t time)
{
    std::tm result{};
    (void)localtime_r(&time, &result);
    return result;
}

std::string_view permissionRemedy()
{
    return "Run it as root (sudo ostrel ...), or join the group \"ostrel\" and sign in again. For the group, "
           "the "
           "reader must run (systemctl enable --now ostrel-reader.socket).";
}

std::string_view driverRemedy()
{
    return "Load the kernel's NVMe driver (modprobe nvme), or give the device back to it.";
}

} // namespace Host::Platform
