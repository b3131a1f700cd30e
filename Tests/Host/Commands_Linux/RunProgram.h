#pragma once

#include <csignal>
#include <map>
#include <memory>
#include <string>
#include <vector>

namespace HostTest {

/** The outputs and the exit code of a run of the built program. */
struct ProgramResult
{
    int m_ExitCode = -1; ///< -1: a signal ended it
    std::string m_Output;
    std::string m_Errors;
};

using Environment = std::map<std::string, std::string>;

/** Runs the program with both outputs redirected. It gets only the variables in `environment`. */
ProgramResult runProgram(const std::vector<std::string>& arguments, const Environment& environment = {});

/**
 * The same with a small pipe as standard output, which is full when the program starts and blocks no writer.
 * `m_Output` is what the program wrote.
 */
ProgramResult runIntoFullPipe(const std::vector<std::string>& arguments, const Environment& environment = {});

/** The same with such a pipe as standard error; `m_Errors` is what the program wrote. */
ProgramResult runWithFullErrors(const std::vector<std::string>& arguments,
                                const Environment& environment = {});

/** The same with a pipe without a reader as standard output. */
ProgramResult runUnread(const std::vector<std::string>& arguments, const Environment& environment = {});

/** Runs the program with both outputs on a terminal of `columns`. `m_Output` is what the terminal got. */
ProgramResult runOnTerminal(const std::vector<std::string>& arguments, unsigned columns,
                            const Environment& environment = {{"TERM", "xterm"}});

/** A program that runs while the test talks to it. It is killed on destruction, if it still runs. */
class RunningProgram
{
public:
    /**
     * Starts it with both outputs in pipes. With `columns`, its results go to a terminal, and so may its
     * messages.
     */
    explicit RunningProgram(const std::vector<std::string>& arguments, unsigned columns = 0,
                            const Environment& environment = {{"TERM", "xterm"}},
                            bool messagesAmongResults = false);
    ~RunningProgram();
    RunningProgram(const RunningProgram&) = delete;
    RunningProgram& operator=(const RunningProgram&) = delete;

    /**
     * Waits until its results, or its messages, contain `text` after the text that was awaited before.
     * Returns everything up to the end of `text`. Throws when the program ends without it, or after a minute.
     */
    std::string awaitResult(const std::string& text);
    std::string awaitMessage(const std::string& text);

    /** Closes the reading end of its results. */
    void closeResults();

    void send(int signal);

    /** The system's number of the process. */
    int process() const;

    /** Waits for its end. The outputs have the text that no call has awaited. */
    ProgramResult finish();

private:
    struct Native;
    std::unique_ptr<Native> m_Native;
};

} // namespace HostTest
