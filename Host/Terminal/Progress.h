#pragma once

#include "Terminal/Terminal.h"

#include <TLX/Event.h>

#include <string>
#include <thread>

namespace Host::Cli {

/**
 * A sign of life for as long as it lives: a passing line, "Asking 64 drives, 3 s ...". It comes after half a
 * second, is written anew every second by a thread of its own, and is gone at the end.
 */
class Progress
{
public:
    /** `what` (printable) begins the line. Without a terminal that shows it, or with null, nothing is shown.
     */
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
