#pragma once

#include "Terminal/Messages.h"

#include <TLX/Event.h>

#include <cstddef>
#include <string>
#include <thread>

namespace Host::Cli {

/**
 * A sign of life for as long as it lives: one line of a terminal, "Asking 64 drives, 3 s ...", that comes
 * after half a second, is written anew every second by a thread of its own, and is gone at the end.
 */
class Progress
{
public:
    /** Shown by `messages`; without any, or where they reach no terminal, nothing is. */
    Progress(std::size_t drives, Messages* messages);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

private:
    void run(const std::string& what);

    Messages* m_Messages;
    TLX::Threading::CEvent m_Done;
    std::thread m_Thread;
};

} // namespace Host::Cli
