#include "Ostrel/Guarded.h"
#include "Ostrel/PluginApi.h"
#include "Records/Trace.h"

#include <PI/ErrorCode.h>
#include <TLX/ForcedEnd.h>
#include <TLX/Waiter.h>
#include <TLXX/DeviceNotification.h>

namespace NAMESPACE_Ostrel {
namespace {

constexpr std::uint64_t FIRST_WAIT = 100; // milliseconds
constexpr std::uint64_t MILLISECONDS_A_SECOND = 1000;

} // namespace

void IPLUGINAPI_IMPL::Worker()
{
    // The results of the wait, in the order of the events.
    constexpr std::uint32_t FORCED = 1;
    constexpr std::uint32_t PRIVATE = 3;

    OSTREL_TRACE(TRACE_FLOW) << "ENTER Worker()";
    const TLXX::CDeviceNotification notification(m_ForceWorker);
    if (!notification.Active()) {
        OSTREL_TRACE(TRACE_PROGRESS) << "Worker() nothing announces drives, only polling finds them";
    }
    TLX::Threading::CWaitInterval interval(FIRST_WAIT);
    TLX::Threading::CWaiter waiter{&m_ForceWorker, &m_StopRequest, &m_PrivateEvent};
    for (;;) {
        switch (waiter.Wait(interval)) {
        case FORCED:
            OSTREL_TRACE(TRACE_WAKE) << "Worker() m_ForceWorker event received, force scan";
            RunCycle();
            break;
        case TLX::Threading::WaitResult::TimedOut:
            OSTREL_TRACE(TRACE_WAKE) << "Worker() timeout event received";
            RunCycle();
            break;
        case PRIVATE:
            OSTREL_TRACE(TRACE_WAKE) << "Worker() m_PrivateEvent event received";
            NotifyHost();
            break;
        default:
            OSTREL_TRACE(TRACE_WAKE) << "Worker() something else perhaps m_StopRequest";
            OSTREL_TRACE(TRACE_FLOW) << "LEAVE Worker()";
            return;
        }
        OSTREL_TRACE(TRACE_FLOW) << "Worker() before restart interval";
        interval.Restart(m_PollInterval * MILLISECONDS_A_SECOND);
    }
}

void IPLUGINAPI_IMPL::RunCycle()
{
    const CTracedWait dataLock(m_DataLock, "m_DataLock", "Release ()", OSTREL_WITHIN("Worker"));
    if (!dataLock.Taken())
        return;
    std::uint32_t result = PI::ERR_GENERAL_FAILURE;
    bool pending = false;
    {
        const CTracedWait eventsLock(m_EventsLock, "m_EventsLock", "Release ()", OSTREL_WITHIN("Worker"));
        if (!eventsLock.Taken())
            return;
        try {
            result = Refresh();
        } catch (TLX::Threading::CForcedEnd&) {
            throw; // The thread is being ended; swallowing this would abort the process.
        } catch (...) {
            traceThrown(OSTREL_WITHIN("Worker"), "Worker() a cycle");
        }
        pending = !m_Events.empty();
    }
    if (pending || result == PI::ERR_SUCCESS)
        NotifyHost();
    ++m_Plugin.m_UpdateCount;
}

std::uint32_t IPLUGINAPI_IMPL::Refresh()
{
    (void)m_NVMeDevices.scan();
    if (!m_NVMeDevices.query(&NVMeDevice::queryIdentifyController)) {
        OSTREL_TRACE_WITHIN(TRACE_LOCK, "Worker") << "Worker() Update skipped";
        return PI::ERR_GENERAL_FAILURE;
    }

    std::vector<CNVMeAdapter> adapters;
    std::vector<CNVMePhysicalDrive> physicalDrives;
    OSTREL_TRACE_WITHIN(TRACE_PROGRESS, "Worker") << "Before ScanSystem()";
    const std::uint32_t scanned = ScanSystem(adapters, physicalDrives, false);
    OSTREL_TRACE_WITHIN(TRACE_PROGRESS, "Worker") << "After ScanSystem() ret = %d" << scanned;
    OSTREL_TRACE_WITHIN(TRACE_PROGRESS, "Worker") << "Before UpdateSystem()";
    const std::uint32_t updated = UpdateSystem(adapters, physicalDrives);
    OSTREL_TRACE_WITHIN(TRACE_PROGRESS, "Worker") << "After UpdateSystem() ret = %d" << updated;

    LinkAdapters(m_Adapters);
    for (CNVMeAdapter& adapter : m_Adapters)
        ++adapter.m_UpdateCount;
    return updated;
}

void IPLUGINAPI_IMPL::NotifyHost()
{
    if (m_HostCallback == nullptr)
        return;
    try {
        m_HostCallback(m_HostContext, this);
    } catch (TLX::Threading::CForcedEnd&) {
        throw;
    } catch (...) {
        traceThrown(OSTREL_WITHIN("Worker"), "Worker() the host's callback");
    }
}

} // namespace NAMESPACE_Ostrel
