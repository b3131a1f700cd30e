#include "Ostrel/PluginApi.h"
#include "Records/Trace.h"

#include <PI/ErrorCode.h>
#include <TLX/Clock.h>

namespace NAMESPACE_Ostrel {
namespace {

// Milliseconds.
constexpr std::uint64_t SETTLE_PAUSE = 100;
constexpr std::uint64_t POLL_PAUSE = 500;
constexpr std::uint64_t TERMINATION_LIMIT = 25'000;

} // namespace

std::uint32_t IPLUGINAPI_IMPL::DeInitialize()
{
    OSTREL_TRACE(TRACE_FLOW) << "ENTER DeInitialize";
    m_StopRequest.Set();
    TLX::Misc::pause(SETTLE_PAUSE);

    const std::uint64_t start = TLX::Misc::monotonic();
    bool running = WorkerRuns();
    while (running) {
        OSTREL_TRACE(TRACE_PROGRESS) << "Wait for termination... (Worker)";
        if (TLX::Misc::monotonic() - start >= TERMINATION_LIMIT)
            break;
        TLX::Misc::pause(POLL_PAUSE);
        running = WorkerRuns();
    }
    if (running && WorkerRuns()) {
        OSTREL_TRACE(TRACE_PROGRESS) << "Kill Worker";
        m_WorkerThread->Cancel();
    }

    TLX::Misc::pause(SETTLE_PAUSE);
    OSTREL_TRACE(TRACE_FLOW) << "LEAVE DeInitialize";
    return PI::ERR_SUCCESS;
}

bool IPLUGINAPI_IMPL::WorkerRuns()
{
    return m_WorkerThread && m_WorkerThread->Wait(0) == TLX::Threading::WaitResult::TimedOut;
}

} // namespace NAMESPACE_Ostrel
