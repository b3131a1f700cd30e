#pragma once

#include "Base/Output.h"
#include "Terminal/Screen.h"

#include <cstddef>
#include <mutex>
#include <string>

namespace Host::Cli {

/**
 * Where the program talks to people and scripts: results go to one output, messages to another. Where these
 * are terminals, each may show one passing line at its end, below everything else: the results a status, the
 * messages a progress. `tell` and `showProgress` may be called from any thread, the others from one.
 */
class Terminal
{
public:
    /** Both outputs must outlive it. */
    Terminal(Output& results, Output& messages);
    /** Takes the status away. */
    ~Terminal();
    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;

    /** What the results are shown on. */
    const Screen& screen() const { return m_Screen; }

    /** Says a sentence or more to the administrator. A message that cannot be written is lost. */
    void tell(const std::string& message);

    /** Prints results, above the status. Throws as `Output::write`. */
    void print(const std::string& text);

    /** Whether the results go to a terminal that can show a status. */
    bool showsStatus() const { return m_Results.showsColours(); }

    /**
     * Shows `text` (printable UTF-8) in as much of it as fits the width, in place of the former status; an
     * empty one takes that away. Does nothing where no status can be shown. Throws as `Output::write`.
     */
    void showStatus(const std::string& text);

    /** Whether the messages go to a terminal, which can show a progress. */
    bool showsProgress() const { return m_MessagesOnTerminal; }

    /** Shows `text` (printable UTF-8) in place of the former progress; an empty one takes that away. */
    void showProgress(const std::string& text);

private:
    void writeMessage(const std::string& text);
    std::string wipe();
    void passesAmongResults(std::size_t width);
    void writeAboveStatus(const std::string& text);

    Output& m_Results;
    Output& m_Messages;
    const Screen m_Screen;
    const bool m_MessagesOnTerminal;
    std::string m_Status;
    std::mutex m_Lock;
    std::size_t m_Width = 0; ///< of the passing line that a message has to take the place of; under m_Lock
};

} // namespace Host::Cli
