#include "Host/Linux/RunProgram.h"

#include <cerrno>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <stdexcept>

#include <fcntl.h>
#include <pty.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace HostTest {
namespace {

class Descriptor
{
public:
    explicit Descriptor(int number) : m_Number(number)
    {
        if (number < 0)
            throw std::runtime_error("no descriptor");
        // Children that another test starts meanwhile must not keep it open.
        (void)fcntl(number, F_SETFD, FD_CLOEXEC);
    }
    ~Descriptor() { reset(); }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;

    int number() const { return m_Number; }

    void reset()
    {
        if (m_Number >= 0)
            (void)close(m_Number);
        m_Number = -1;
    }

private:
    int m_Number;
};

/** Passes on what the sanitizers and the dynamic linker need. */
std::vector<std::string> environmentWords(const Environment& environment)
{
    std::vector<std::string> words;
    for (const char* name :
         {"ASAN_OPTIONS", "UBSAN_OPTIONS", "TSAN_OPTIONS", "LSAN_OPTIONS", "LD_LIBRARY_PATH"})
        if (const char* value = std::getenv(name))
            words.push_back(std::string(name) + "=" + value);
    for (const auto& [name, value] : environment)
        words.push_back(name + "=" + value);
    return words;
}

std::vector<char*> pointersTo(std::vector<std::string>& words)
{
    std::vector<char*> pointers;
    for (std::string& word : words)
        pointers.push_back(word.data());
    pointers.push_back(nullptr);
    return pointers;
}

pid_t start(const std::vector<std::string>& arguments, const Environment& environment, int output, int errors)
{
    std::vector<std::string> words = {OSTREL_PROGRAM};
    words.insert(words.end(), arguments.begin(), arguments.end());
    std::vector<std::string> variables = environmentWords(environment);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, errors, STDERR_FILENO);
    pid_t child = -1;
    const int error = posix_spawn(&child, OSTREL_PROGRAM, &actions, nullptr, pointersTo(words).data(),
                                  pointersTo(variables).data());
    posix_spawn_file_actions_destroy(&actions);
    if (error != 0)
        throw std::runtime_error("cannot start " OSTREL_PROGRAM);
    return child;
}

int waitFor(pid_t child)
{
    int status = 0;
    while (waitpid(child, &status, 0) < 0 && errno == EINTR) {
    }
    return WIFEXITED(status) ? WEXITSTATUS(status) : -1;
}

std::string readAll(int descriptor)
{
    std::string text;
    char chunk[4096];
    for (ssize_t size = 0; (size = read(descriptor, chunk, sizeof chunk)) > 0;)
        text.append(chunk, static_cast<std::size_t>(size));
    return text;
}

} // namespace

ProgramResult runProgram(const std::vector<std::string>& arguments, const Environment& environment)
{
    const Descriptor output(open(std::filesystem::temp_directory_path().c_str(), O_TMPFILE | O_RDWR, 0600));
    const Descriptor errors(open(std::filesystem::temp_directory_path().c_str(), O_TMPFILE | O_RDWR, 0600));
    ProgramResult result;
    result.m_ExitCode = waitFor(start(arguments, environment, output.number(), errors.number()));
    (void)lseek(output.number(), 0, SEEK_SET);
    (void)lseek(errors.number(), 0, SEEK_SET);
    result.m_Output = readAll(output.number());
    result.m_Errors = readAll(errors.number());
    return result;
}

ProgramResult runOnTerminal(const std::vector<std::string>& arguments, unsigned columns,
                            const Environment& environment)
{
    winsize size{};
    size.ws_row = 25;
    size.ws_col = static_cast<unsigned short>(columns);
    int master = -1;
    int slave = -1;
    if (openpty(&master, &slave, nullptr, nullptr, &size) != 0)
        throw std::runtime_error("no terminal to be had");
    const Descriptor ours(master);
    Descriptor theirs(slave);
    const pid_t child = start(arguments, environment, theirs.number(), theirs.number());
    theirs.reset();
    ProgramResult result;
    // Reading ends with an error once the last holder of the other side is gone.
    for (const char character : readAll(ours.number()))
        if (character != '\r')
            result.m_Output += character;
    result.m_ExitCode = waitFor(child);
    return result;
}

} // namespace HostTest
