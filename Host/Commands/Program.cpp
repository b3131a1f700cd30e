#include "Commands/Program.h"

#include "Base/Failure.h"
#include "Base/Platform.h"
#include "Commands/CheckCommand.h"
#include "Commands/CommandLine.h"
#include "Commands/DoctorCommand.h"
#include "Commands/JournalCommand.h"
#include "Commands/ListCommand.h"
#include "Commands/ServeCommand.h"
#include "Commands/ServiceCommands.h"
#include "Commands/Session.h"
#include "Commands/SetCommand.h"
#include "Commands/ShowCommand.h"
#include "Commands/TopologyCommand.h"
#include "Commands/WatchCommand.h"
#include "Documents/Json.h"
#include "Terminal/Terminal.h"

#include <nlohmann/json.hpp>

#include <algorithm>
#include <optional>

namespace Host::Cli {
namespace {

/** Whether the words contain an option. This works even when the command line as a whole is wrong. */
bool asksFor(const std::vector<std::string>& words, const std::string& option)
{
    return std::any_of(words.begin(), words.end(), [&](const std::string& word) {
        return word == option || word.starts_with(option + '=');
    });
}

int execute(const Options& options, Terminal& terminal)
{
    // Plug-ins may print to standard output. That output is only useful together with trace lines.
    Platform::divertStandardOutput(options.m_Trace.wanted() ? Platform::Elsewhere::StandardError
                                                            : Platform::Elsewhere::Nowhere);
    if (options.m_Command == Command::Journal)
        return static_cast<int>(journal(options, terminal));
    if (options.m_Command == Command::Serve)
        return static_cast<int>(serve(options, terminal));
    if (options.m_Command == Command::Watch || options.m_Command == Command::Set)
        if (const std::optional<RunningService> service = runningService(options))
            return static_cast<int>(options.m_Command == Command::Watch
                                        ? watchService(*service, options, terminal)
                                        : setThroughService(*service, options, terminal));
    const Session session(options, terminal);
    switch (options.m_Command) {
    case Command::List:
        return static_cast<int>(list(session));
    case Command::Topology:
        return static_cast<int>(topology(session));
    case Command::Show:
        return static_cast<int>(show(session));
    case Command::Set:
        return static_cast<int>(set(session));
    case Command::Watch:
        return static_cast<int>(watch(session));
    case Command::Check:
        return static_cast<int>(check(session));
    case Command::Doctor:
        return static_cast<int>(doctor(session));
    case Command::Journal:
    case Command::Serve:
        break;
    }
    return static_cast<int>(ExitCode::RequestFailed);
}

constexpr int NO_VERDICT = static_cast<int>(Verdict::Unknown);

/** Reports failures as a message, and also as a document if the user asked for documents. */
class FailureReport
{
public:
    FailureReport(const std::vector<std::string>& words, Terminal& terminal)
        : m_Words(words),
          m_Terminal(terminal),
          m_Json(asksFor(words, "--json")),
          m_Simulated(asksFor(words, "--simulate"))
    {}

    /** What a crash leaves to be told by "check". */
    std::string crashText() const
    {
        return noVerdict("The program crashed, or one of its plug-ins did.", m_Json, m_Simulated);
    }

    /** Returns the exit code of the program. */
    int report(ExitCode exitCode, const std::string& message,
               const std::optional<RequestResult>& result = std::nullopt) const
    {
        if (isCheck())
            return reportNoVerdict(message, result);
        m_Terminal.tell(message);
        try {
            if (m_Json) {
                const std::string command = commandIn(m_Words);
                const auto text = command == "watch" || command == "journal" ? lineText : documentText;
                m_Terminal.print(text(failureJson(message, result), m_Simulated));
            }
        } catch (const Platform::ReaderGone&) {
            // The exit code also reports the failure.
        } catch (const std::exception& error) {
            // The message may already be about results that could not be written.
            if (error.what() != message)
                m_Terminal.tell(error.what());
        }
        return static_cast<int>(exitCode);
    }

    bool isCheck() const { return commandIn(m_Words) == "check"; }

private:
    int reportNoVerdict(const std::string& message, const std::optional<RequestResult>& result) const
    {
        try {
            m_Terminal.print(noVerdict(message, m_Json, m_Simulated, result));
        } catch (const std::exception& error) {
            m_Terminal.tell(error.what());
        }
        return NO_VERDICT;
    }

    const std::vector<std::string>& m_Words;
    Terminal& m_Terminal;
    const bool m_Json;
    const bool m_Simulated;
};

} // namespace

int run(const std::vector<std::string>& words)
{
    Platform::StandardOutput results(Platform::Standard::Output);
    Platform::StandardOutput messages(Platform::Standard::Error);
    Terminal terminal(results, messages);
    const FailureReport failures(words, terminal);
    try {
        try {
            const Options options = parseCommandLine(words);
            std::optional<Platform::CrashReport> crash;
            if (options.m_Command == Command::Check)
                crash.emplace(results, failures.crashText(), NO_VERDICT);
            return execute(options, terminal);
        } catch (const TextAsked& asked) {
            terminal.print(asked.what());
            return failures.isCheck() ? NO_VERDICT : static_cast<int>(ExitCode::Done);
        }
    } catch (const Platform::ReaderGone&) {
        // A reader that closes the pipe has read enough.
        return static_cast<int>(ExitCode::Done);
    } catch (const Failure& failure) {
        return failures.report(failure.exitCode(), failure.what(), failure.result());
    } catch (const std::exception& error) {
        return failures.report(ExitCode::RequestFailed, error.what());
    }
}

} // namespace Host::Cli
