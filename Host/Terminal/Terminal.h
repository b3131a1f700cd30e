#pragma once

#include "Base/Output.h"
#include "Terminal/Screen.h"

#include <cstddef>
#include <mutex>
#include <string>

namespace Host::Cli {

/**
 * How the program talks to people and scripts. Results go to one output, messages to the other. On a
 * terminal, each output can show one passing line below everything else: a status for the results, a progress
 * for the messages. `tell` and `showProgress` may be called from any thread, the other functions from one
 * thread only.
 */
class Terminal
{
public:
    /** Both outputs must live longer than this object. */
    Terminal(Output& results, Output& messages);
    /** Removes the status. */
    ~Terminal();
    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;

    /** The properties of the output for results. */
    const Screen& screen() const { return m_Screen; }

    /** Prints whole sentences for the administrator. A message that cannot be written is lost. */
    void tell(const std::string& message);

    /** Prints a line for the administrator that is no complaint, without the program's name. */
    void announce(const std::string& message);

    /** Prints results above the status. Throws like `Output::write`. */
    void print(const std::string& text);

    /** Whether results go to a terminal that can show a status. */
    bool showsStatus() const { return m_Results.showsColours(); }

    /**
     * Shows as much of `text` (printable UTF-8) as fits the width, in place of the previous status. An empty
     * text removes the status. Does nothing when no status can be shown. Throws like `Output::write`.
     */
    void showStatus(const std::string& text);

    /** Whether messages go to a terminal that can show a progress. */
    bool showsProgress() const { return m_MessagesOnTerminal; }

    /** Shows `text` (printable UTF-8) in place of the previous progress. An empty text removes it. */
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
    std::size_t m_Width = 0; ///< of the passing line that a message must overwrite; guarded by m_Lock
};

} // namespace Host::Cli
