#include "Cli/Progress.h"

#include "Cli/Seconds.h"
#include "Core/Platform.h"

#include <TLX/Clock.h>
#include <TLX/WaitResult.h>

#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <system_error>
#include <utility>

namespace Host::Cli {
namespace {

constexpr std::uint64_t PATIENCE = 500;

} // namespace

Progress::Progress(std::size_t drives, Write write) : m_Write(std::move(write))
{
    if (!m_Write || m_Done.Init(false, true) != TLX::Threading::WaitResult::Taken)
        return;
    try {
        m_Thread = std::thread(&Progress::run, this,
                               "Asking " + std::to_string(drives) + (drives == 1 ? " drive" : " drives"));
    } catch (const std::system_error&) {
        // The drives can be asked without it.
        return;
    }
}

Progress::~Progress()
{
    m_Done.Set();
    if (m_Thread.joinable())
        m_Thread.join();
}

void Progress::run(const std::string& what)
{
    const std::uint64_t start = TLX::Misc::monotonic();
    std::size_t shown = 0;
    // The cursor waits at the line's beginning, so that others' messages overwrite the line.
    for (std::uint64_t wait = PATIENCE;
         m_Done.Wait(static_cast<std::uint32_t>(wait)) == TLX::Threading::WaitResult::TimedOut;) {
        const std::uint64_t elapsed = TLX::Misc::monotonic() - start;
        const std::uint64_t seconds = elapsed / MILLISECONDS_A_SECOND;
        const std::string line = what + (seconds > 0 ? ", " + std::to_string(seconds) + " s" : "") + " ...";
        m_Write(line + '\r');
        shown = std::max(shown, line.size());
        wait = MILLISECONDS_A_SECOND - elapsed % MILLISECONDS_A_SECOND;
    }
    if (shown > 0)
        m_Write(std::string(shown, ' ') + '\r');
}

Progress::Write terminalWriter()
{
    if (!Platform::errorsGoToTerminal())
        return nullptr;
    return [](const std::string& text) {
        (void)std::fputs(text.c_str(), stderr);
        (void)std::fflush(stderr);
    };
}

} // namespace Host::Cli
