#include "Terminal/Progress.h"

#include "Base/Time.h"

#include <TLX/Clock.h>
#include <TLX/WaitResult.h>

#include <cstdint>
#include <system_error>

namespace Host::Cli {
namespace {

constexpr std::uint64_t PATIENCE = 500;

} // namespace

Progress::Progress(const std::string& what, Terminal* terminal) : m_Terminal(terminal)
{
    if (m_Terminal == nullptr || !m_Terminal->showsProgress() ||
        m_Done.Init(false, true) != TLX::Threading::WaitResult::Taken)
        return;
    try {
        m_Thread = std::thread(&Progress::run, this, what);
    } catch (const std::system_error&) {
        // Without a thread there is no progress line, but the drives can still be asked.
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
    for (std::uint64_t wait = PATIENCE;
         m_Done.Wait(static_cast<std::uint32_t>(wait)) == TLX::Threading::WaitResult::TimedOut;) {
        const std::uint64_t elapsed = TLX::Misc::monotonic() - start;
        const std::uint64_t seconds = elapsed / MILLISECONDS_A_SECOND;
        m_Terminal->showProgress(what + (seconds > 0 ? ", " + std::to_string(seconds) + " s" : "") + " ...");
        wait = MILLISECONDS_A_SECOND - elapsed % MILLISECONDS_A_SECOND;
    }
    m_Terminal->showProgress({});
}

} // namespace Host::Cli
