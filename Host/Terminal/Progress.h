#pragma once

#include "Terminal/Terminal.h"

#include <TLX/Event.h>

#include <string>
#include <thread>

namespace Host::Cli {

/**
 * Shows a passing line while it lives, such as "Asking 64 drives, 3 s ...". The line appears after half a
 * second. A thread of its own renews it every second. It disappears at the end.
 */
class Progress
{
public:
    /** `what` (printable) begins the line. Nothing is shown when `terminal` is null or shows no progress. */
    Progress(const std::string& what, Terminal* terminal);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

private:
    void run(const std::string& what);

    Terminal* m_Terminal;
    TLX::Threading::CEvent m_Done;
    std::thread m_Thread;
};

} // namespace Host::Cli
