#pragma once

#include "Terminal/Messages.h"

#include <string>

namespace Host::Platform {
class ResultChannel;
}

namespace Host::Cli {

/** The last line of a terminal, which is written anew in place. Elsewhere there is none. */
class StatusLine
{
public:
    /** Shows nothing yet. Without `shown` it never does. `messages` take its place as they come. */
    StatusLine(Platform::ResultChannel& results, Messages& messages, bool shown)
        : m_Results(results), m_Messages(messages), m_Shown(shown)
    {}
    /** Takes the line away. */
    ~StatusLine();
    StatusLine(const StatusLine&) = delete;
    StatusLine& operator=(const StatusLine&) = delete;

    bool shown() const { return m_Shown; }

    /** Shows `text` (UTF-8 without control characters) from now on, in as much of it as fits the width. */
    void show(const std::string& text);

    /** Prints lines above. */
    void printAbove(const std::string& lines);

private:
    Platform::ResultChannel& m_Results;
    Messages& m_Messages;
    const bool m_Shown;
    std::string m_Text;
};

} // namespace Host::Cli
