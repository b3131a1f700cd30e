#pragma once

#include <csignal>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace HostTest {

/** What a run of the built program left behind. */
struct ProgramResult
{
    int m_ExitCode = -1; ///< -1: it ended by a signal
    std::string m_Output;
    std::string m_Errors;
};

using Environment = std::map<std::string, std::string>;

/** Runs the program with both outputs redirected. `environment` is all that it gets. */
ProgramResult runProgram(const std::vector<std::string>& arguments, const Environment& environment = {});

/**
 * The same with a small pipe as standard output, which is full when the program starts and lets nobody wait.
 * `m_Output` is what the program wrote.
 */
ProgramResult runIntoFullPipe(const std::vector<std::string>& arguments, const Environment& environment = {});

/** The same with such a pipe as standard error; `m_Errors` is what the program wrote. */
ProgramResult runWithFullErrors(const std::vector<std::string>& arguments,
                                const Environment& environment = {});

/** The same with a pipe as standard output that nobody reads. */
ProgramResult runUnread(const std::vector<std::string>& arguments, const Environment& environment = {});

/** Runs the program with both outputs on a terminal of `columns`; `m_Output` is what the terminal got. */
ProgramResult runOnTerminal(const std::vector<std::string>& arguments, unsigned columns,
                            const Environment& environment = {{"TERM", "xterm"}});

/** A program that runs while the test talks to it. Killed on destruction, if it still runs. */
class RunningProgram
{
public:
    /**
     * Starts it with both outputs in pipes, or, with `columns`, with its results on a terminal, where its
     * messages may go, too.
     */
    explicit RunningProgram(const std::vector<std::string>& arguments, unsigned columns = 0,
                            const Environment& environment = {{"TERM", "xterm"}},
                            bool messagesAmongResults = false);
    ~RunningProgram();
    RunningProgram(const RunningProgram&) = delete;
    RunningProgram& operator=(const RunningProgram&) = delete;

    /**
     * Waits until its results, or its messages, contain `text` behind what was awaited before; returns what
     * came up to the end of it. Throws when it ends without, or after a minute.
     */
    std::string awaitResult(const std::string& text);
    std::string awaitMessage(const std::string& text);

    /** Nobody reads its results any more. */
    void closeResults();

    void send(int signal);

    /** Waits for its end; the outputs hold what nobody has awaited. */
    ProgramResult finish();

private:
    struct Native;
    std::unique_ptr<Native> m_Native;
};

} // namespace HostTest
