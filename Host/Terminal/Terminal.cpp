#include "Terminal/Terminal.h"

#include "Base/Text.h"

#include <algorithm>
#include <exception>
#include <utility>

namespace Host::Cli {
namespace {

constexpr char CLEAR[] = "\r\033[K";

} // namespace

Terminal::Terminal(Output& results, Output& messages)
    : m_Results(results),
      m_Messages(messages),
      m_Screen(detectScreen(results)),
      m_MessagesOnTerminal(messages.isTerminal())
{}

Terminal::~Terminal()
{
    try {
        showStatus({});
    } catch (const std::exception&) {
        // The reader has closed the output, so there is nothing to wipe out.
        return;
    }
}

void Terminal::tell(const std::string& message)
{
    const std::scoped_lock guard(m_Lock);
    writeMessage(wipe() + "ostrel: " + printableLines(message) + '\n');
}

void Terminal::announce(const std::string& message)
{
    const std::scoped_lock guard(m_Lock);
    writeMessage(wipe() + printableLines(message) + '\n');
}

void Terminal::showProgress(const std::string& text)
{
    if (!m_MessagesOnTerminal)
        return;
    const std::scoped_lock guard(m_Lock);
    const std::size_t width = displayWidth(text);
    const std::size_t former = std::exchange(m_Width, width);
    if (width > 0 || former > 0)
        writeMessage(text + std::string(former > width ? former - width : 0, ' ') + '\r');
}

/** The caller must hold the lock. */
void Terminal::writeMessage(const std::string& text)
{
    try {
        m_Messages.write(text);
    } catch (const std::exception&) {
        // The message is lost, because there is no other output to report it on.
        return;
    }
}

/** The text that removes the passing line on any terminal. The caller must hold the lock. */
std::string Terminal::wipe()
{
    const std::size_t width = std::exchange(m_Width, 0);
    return width == 0 ? std::string() : std::string(width, ' ') + '\r';
}

/** If both outputs go to the same terminal, the message takes the place of the status. */
void Terminal::passesAmongResults(std::size_t width)
{
    const std::scoped_lock guard(m_Lock);
    m_Width = m_MessagesOnTerminal ? width : 0;
}

void Terminal::print(const std::string& text)
{
    if (m_Status.empty())
        m_Results.write(text);
    else
        writeAboveStatus(text);
}

void Terminal::showStatus(const std::string& text)
{
    if (!showsStatus() || (text.empty() && m_Status.empty()))
        return;
    m_Status = text;
    writeAboveStatus({});
}

void Terminal::writeAboveStatus(const std::string& text)
{
    // The last column is left free, because some terminals wrap there.
    const std::string status = shortened(m_Status, std::max(m_Results.terminalWidth(), 1U) - 1);
    passesAmongResults(displayWidth(status));
    m_Results.write(CLEAR + text + status + (status.empty() ? "" : "\r"));
}

} // namespace Host::Cli
