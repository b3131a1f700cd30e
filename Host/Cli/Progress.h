#pragma once

#include <TLX/Event.h>

#include <cstddef>
#include <functional>
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
    using Write = std::function<void(const std::string&)>;

    /** `write` prints to the terminal, from the thread; null: there is no terminal, and nothing is shown. */
    Progress(std::size_t drives, Write write);
    ~Progress();
    Progress(const Progress&) = delete;
    Progress& operator=(const Progress&) = delete;

private:
    void run(const std::string& what);

    Write m_Write;
    TLX::Threading::CEvent m_Done;
    std::thread m_Thread;
};

/** Prints to standard error; null when that is no terminal. */
Progress::Write terminalWriter();

} // namespace Host::Cli
