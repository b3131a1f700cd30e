#include "Host/Commands_Linux/RunProgram.h"

#include "Host/Built.h"

#include <TLX/Linux/Descriptor.h>

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <memory>
#include <stdexcept>

#include <fcntl.h>
#include <poll.h>
#include <pty.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

namespace HostTest {
namespace {

using TLX::Linux::CDescriptor;

CDescriptor owned(int number)
{
    if (number < 0)
        throw std::runtime_error("no descriptor");
    // Children that another test starts at the same time must not inherit it.
    (void)fcntl(number, F_SETFD, FD_CLOEXEC);
    return CDescriptor(number);
}

/** Passes on the variables that the sanitizers and the dynamic linker need. */
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
    std::vector<std::string> words = {Built::PROGRAM};
    words.insert(words.end(), arguments.begin(), arguments.end());
    std::vector<std::string> variables = environmentWords(environment);
    posix_spawn_file_actions_t actions;
    posix_spawn_file_actions_init(&actions);
    posix_spawn_file_actions_adddup2(&actions, output, STDOUT_FILENO);
    posix_spawn_file_actions_adddup2(&actions, errors, STDERR_FILENO);
    pid_t child = -1;
    const int error = posix_spawn(&child, Built::PROGRAM, &actions, nullptr, pointersTo(words).data(),
                                  pointersTo(variables).data());
    posix_spawn_file_actions_destroy(&actions);
    if (error != 0)
        throw std::runtime_error(std::string("cannot start ") + Built::PROGRAM);
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

/** Both ends of a new terminal. */
struct Terminal
{
    explicit Terminal(unsigned columns)
    {
        winsize size{};
        size.ws_row = 25;
        size.ws_col = static_cast<unsigned short>(columns);
        if (openpty(&m_Ours, &m_Theirs, nullptr, nullptr, &size) != 0)
            throw std::runtime_error("no terminal to be had");
    }

    int m_Ours = -1;
    int m_Theirs = -1;
};

} // namespace

ProgramResult runProgram(const std::vector<std::string>& arguments, const Environment& environment)
{
    const CDescriptor output =
        owned(open(std::filesystem::temp_directory_path().c_str(), O_TMPFILE | O_RDWR, 0600));
    const CDescriptor errors =
        owned(open(std::filesystem::temp_directory_path().c_str(), O_TMPFILE | O_RDWR, 0600));
    ProgramResult result;
    result.m_ExitCode = waitFor(start(arguments, environment, output.Get(), errors.Get()));
    (void)lseek(output.Get(), 0, SEEK_SET);
    (void)lseek(errors.Get(), 0, SEEK_SET);
    result.m_Output = readAll(output.Get());
    result.m_Errors = readAll(errors.Get());
    return result;
}

namespace {

/** A small pipe that blocks no writer. */
struct Pipe
{
    Pipe()
    {
        constexpr int smallest = 4096;
        int ends[2] = {-1, -1};
        if (pipe2(ends, O_NONBLOCK) != 0 || fcntl(ends[1], F_SETPIPE_SZ, smallest) < 0)
            throw std::runtime_error("no pipe to be had");
        m_Reader = owned(ends[0]);
        m_Writer = owned(ends[1]);
    }

    /** Returns how many bytes were written. */
    std::size_t fill() const
    {
        const char byte = ' ';
        std::size_t bytes = 0;
        while (write(m_Writer.Get(), &byte, 1) == 1)
            ++bytes;
        (void)fcntl(m_Reader.Get(), F_SETFL, 0);
        return bytes;
    }

    CDescriptor m_Reader;
    CDescriptor m_Writer;
};

} // namespace

ProgramResult runIntoFullPipe(const std::vector<std::string>& arguments, const Environment& environment)
{
    Pipe output;
    const std::size_t filler = output.fill();
    const CDescriptor errors = owned(open("/dev/null", O_WRONLY));
    const pid_t child = start(arguments, environment, output.m_Writer.Get(), errors.Get());
    output.m_Writer = CDescriptor();
    ProgramResult result;
    result.m_Output = readAll(output.m_Reader.Get()).substr(filler);
    result.m_ExitCode = waitFor(child);
    return result;
}

ProgramResult runWithFullErrors(const std::vector<std::string>& arguments, const Environment& environment)
{
    Pipe errors;
    const std::size_t filler = errors.fill();
    const CDescriptor output = owned(open("/dev/null", O_WRONLY));
    const pid_t child = start(arguments, environment, output.Get(), errors.m_Writer.Get());
    errors.m_Writer = CDescriptor();
    ProgramResult result;
    result.m_Errors = readAll(errors.m_Reader.Get()).substr(filler);
    result.m_ExitCode = waitFor(child);
    return result;
}

ProgramResult runUnread(const std::vector<std::string>& arguments, const Environment& environment)
{
    Pipe output;
    output.m_Reader = CDescriptor();
    const CDescriptor errors =
        owned(open(std::filesystem::temp_directory_path().c_str(), O_TMPFILE | O_RDWR, 0600));
    ProgramResult result;
    result.m_ExitCode = waitFor(start(arguments, environment, output.m_Writer.Get(), errors.Get()));
    (void)lseek(errors.Get(), 0, SEEK_SET);
    result.m_Errors = readAll(errors.Get());
    return result;
}

ProgramResult runOnTerminal(const std::vector<std::string>& arguments, unsigned columns,
                            const Environment& environment)
{
    const Terminal terminal(columns);
    const CDescriptor ours = owned(terminal.m_Ours);
    CDescriptor theirs = owned(terminal.m_Theirs);
    const pid_t child = start(arguments, environment, theirs.Get(), theirs.Get());
    theirs = CDescriptor();
    ProgramResult result;
    // Reading ends with an error once the last holder of the other side is gone.
    for (const char character : readAll(ours.Get()))
        if (character != '\r')
            result.m_Output += character;
    result.m_ExitCode = waitFor(child);
    return result;
}

/** One output of the program. */
struct Stream
{
    /** Reads the available bytes. Returns false at the end. */
    bool read()
    {
        char chunk[4096];
        // A terminal that its last writer has left gives an error.
        const ssize_t size = ::read(m_Ours.Get(), chunk, sizeof chunk);
        for (ssize_t i = 0; i < size; ++i)
            if (chunk[i] != '\r' || !m_IsTerminal)
                m_Text += chunk[i];
        m_Open = size > 0;
        return m_Open;
    }

    CDescriptor m_Ours;
    bool m_IsTerminal = false;
    bool m_Open = true;
    std::string m_Text; ///< text that no call has awaited yet
};

struct RunningProgram::Native
{
    std::string await(Stream& stream, const std::string& text)
    {
        using Clock = std::chrono::steady_clock;
        // A status line that is renewed again and again must not delay the time-out.
        const Clock::time_point end = Clock::now() + std::chrono::minutes(1);
        std::size_t found = 0;
        while ((found = stream.m_Text.find(text)) == std::string::npos) {
            pollfd ready{stream.m_Ours.Get(), POLLIN, 0};
            const auto left = std::chrono::ceil<std::chrono::milliseconds>(end - Clock::now()).count();
            if (left <= 0 || poll(&ready, 1, static_cast<int>(left)) == 0)
                throw std::runtime_error("no \"" + text + "\" in time, but: " + stream.m_Text);
            if (!stream.read())
                throw std::runtime_error("the program ended without \"" + text + "\": " + stream.m_Text);
        }
        const std::string head = stream.m_Text.substr(0, found + text.size());
        stream.m_Text.erase(0, head.size());
        return head;
    }

    Stream m_Results;
    Stream m_Messages;
    pid_t m_Child = -1;
};

RunningProgram::RunningProgram(const std::vector<std::string>& arguments, unsigned columns,
                               const Environment& environment, bool messagesAmongResults)
    : m_Native(std::make_unique<Native>())
{
    int results[2] = {-1, -1};
    int messages[2] = {-1, -1};
    if (pipe(messages) != 0 || (columns == 0 && pipe(results) != 0))
        throw std::runtime_error("no pipe to be had");
    if (columns != 0) {
        const Terminal terminal(columns);
        results[0] = terminal.m_Ours;
        results[1] = terminal.m_Theirs;
        m_Native->m_Results.m_IsTerminal = true;
    }
    m_Native->m_Results.m_Ours = owned(results[0]);
    m_Native->m_Messages.m_Ours = owned(messages[0]);
    const CDescriptor theirResults = owned(results[1]);
    const CDescriptor theirMessages = owned(messages[1]);
    m_Native->m_Child = start(arguments, environment, theirResults.Get(),
                              (messagesAmongResults ? theirResults : theirMessages).Get());
}

RunningProgram::~RunningProgram()
{
    if (m_Native->m_Child < 0)
        return;
    send(SIGKILL);
    (void)waitFor(m_Native->m_Child);
}

std::string RunningProgram::awaitResult(const std::string& text)
{
    return m_Native->await(m_Native->m_Results, text);
}

std::string RunningProgram::awaitMessage(const std::string& text)
{
    return m_Native->await(m_Native->m_Messages, text);
}

void RunningProgram::closeResults()
{
    m_Native->m_Results.m_Ours = CDescriptor();
    m_Native->m_Results.m_Open = false;
}

void RunningProgram::send(int signal)
{
    (void)kill(m_Native->m_Child, signal);
}

int RunningProgram::process() const
{
    return m_Native->m_Child;
}

ProgramResult RunningProgram::finish()
{
    // The output after this point is small enough for both pipes, so one can be read after the other.
    for (Stream* stream : {&m_Native->m_Results, &m_Native->m_Messages})
        while (stream->m_Open)
            (void)stream->read();
    ProgramResult result;
    result.m_ExitCode = waitFor(m_Native->m_Child);
    m_Native->m_Child = -1;
    result.m_Output = m_Native->m_Results.m_Text;
    result.m_Errors = m_Native->m_Messages.m_Text;
    return result;
}

} // namespace HostTest
