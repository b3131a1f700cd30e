#include "Ostrel/PluginApi.h"
#include "OstrelPhysicalDrive/Row.h"
#include "Records/Location.h"
#include "Records/Trace.h"

#include <PI/ErrorCode.h>
#include <TLX/Clock.h>

#include <iterator>
#include <stdexcept>
#include <vector>

namespace NAMESPACE_Ostrel {
namespace {

constexpr int IDENTIFY_RETRIES = 5;
constexpr std::uint64_t IDENTIFY_RETRY_PAUSE = 500; // milliseconds

bool identifies(NVMeDevice& device)
{
    bool answered = device.queryIdentifyController();
    for (int retry = 0; !answered && retry < IDENTIFY_RETRIES; ++retry) {
        TLX::Misc::pause(IDENTIFY_RETRY_PAUSE);
        answered = device.queryIdentifyController();
    }
    return answered;
}

void printAdapterCount(unsigned long count)
{
    consolePrint("%s:  Initialize:  adapter count is %lu\n", MODULE_NAME, count);
}

} // namespace

std::optional<IPLUGINAPI_IMPL::CLockFailure> IPLUGINAPI_IMPL::InitializeLocks()
{
    CLockFailure last{};
    const auto isReady = [&last](const char* name, std::uint32_t result) {
        last = {name, result};
        return result == TLX::Threading::WaitResult::Taken;
    };
    if (isReady("m_DataLock", m_DataLock.Init()) && isReady("m_PrivateEventsLock", m_EventsLock.Init()) &&
        isReady("m_ForceWorker", m_ForceWorker.Init(false, false)) &&
        isReady("m_StopRequest", m_StopRequest.Init(false, true)) &&
        isReady("m_PrivateEvent", m_PrivateEvent.Init(false, false)))
        return std::nullopt;
    return last;
}

void IPLUGINAPI_IMPL::IdentifyDevices()
{
    for (auto device = m_NVMeDevices.begin(); device != m_NVMeDevices.end();)
        device = identifies(*device) ? std::next(device) : m_NVMeDevices.erase(device);

    (void)m_NVMeDevices.query([](NVMeDevice&) { return true; });
}

bool IPLUGINAPI_IMPL::FindDevices()
{
    try {
        return m_NVMeDevices.scan();
    } catch (const std::runtime_error& error) {
        OSTREL_TRACE_WITHIN(TRACE_FLOW, "Initialize")
            << "Initialize() NVMe devices scan(): %s" << error.what();
        return false;
    }
}

std::uint32_t IPLUGINAPI_IMPL::Initialize(std::vector<PI::CAdapterID>& adapterIDs)
{
    OSTREL_TRACE(TRACE_FLOW) << "ENTER Initialize()";
    if (const auto failure = InitializeLocks()) {
        OSTREL_TRACE(TRACE_FLOW) << "LEAVE Initialize() %s.Init() -> PI::ERR_LOCK_INITIALIZATION_FAILED %d"
                                 << failure->m_Name << failure->m_Result;
        return PI::ERR_LOCK_INITIALIZATION_FAILED;
    }

    if (!FindDevices()) {
        printAdapterCount(0);
        OSTREL_TRACE(TRACE_FLOW)
            << "LEAVE Initialize() NVMe devices scan() -> PI::ERR_NO_SUPPORTED_HARDWARE %d"
            << std::uint32_t{PI::ERR_NO_SUPPORTED_HARDWARE};
        return PI::ERR_NO_SUPPORTED_HARDWARE;
    }
    IdentifyDevices();
    if (m_NVMeDevices.empty()) {
        printAdapterCount(0);
        OSTREL_TRACE(TRACE_FLOW)
            << "LEAVE Initialize() NVMe devices identifyController() -> PI::ERR_NO_SUPPORTED_HARDWARE %d"
            << std::uint32_t{PI::ERR_NO_SUPPORTED_HARDWARE};
        return PI::ERR_NO_SUPPORTED_HARDWARE;
    }
    OSTREL_TRACE(TRACE_PROGRESS) << "Initialize(): m_NVMeDevices=%d" << m_NVMeDevices.size();

    const CTracedGuard guard(m_DataLock, "m_DataLock", OSTREL_HERE);
    m_Plugin.m_ID = NextObjectID();
    m_Plugin.m_Type = PI::TYPE_PLUGIN;

    const std::uint32_t scanned = ScanSystem(m_Adapters, m_PhysicalDrives, true);
    OSTREL_TRACE(TRACE_PROGRESS) << "ScanSystem() ret = %d m_Adapters=%d m_PhysicalDrives=%d" << scanned
                                 << m_Adapters.size() << m_PhysicalDrives.size();
    if (scanned != PI::ERR_SUCCESS || m_Adapters.empty()) {
        printAdapterCount(0);
        OSTREL_TRACE(TRACE_FLOW) << "LEAVE Initialize() ScanSystem() -> PI::ERR_NO_SUPPORTED_HARDWARE %d"
                                 << std::uint32_t{PI::ERR_NO_SUPPORTED_HARDWARE};
        return PI::ERR_NO_SUPPORTED_HARDWARE;
    }

    // A failure of the database is only traced; the host gets its adapters all the same.
    m_Plugin.m_Children.clear();
    const std::vector<CDriveRowInsert> drives(m_PhysicalDrives.begin(), m_PhysicalDrives.end());
    (void)WriteRow(&IPLUGINAPI_IMPL::InsertObjectToDatabase, m_Plugin);
    for (CNVMeAdapter& adapter : m_Adapters) {
        adapterIDs.push_back(unassignedIdentity(pciLocation(adapter)));
        m_Plugin.m_Children.push_back(adapter.m_ID);
        adapter.m_Parents.push_back(m_Plugin.m_ID);
        (void)WriteRow(&IPLUGINAPI_IMPL::InsertObjectToDatabase, adapter);
        for (const CDriveRowInsert& drive : drives)
            (void)WriteRow(&IPLUGINAPI_IMPL::InsertObjectToDatabase, drive);
    }

    printAdapterCount(static_cast<std::uint32_t>(m_Adapters.size()));
    OSTREL_TRACE(TRACE_FLOW) << "LEAVE Initialize() -> %d" << std::uint32_t{PI::ERR_SUCCESS};
    return PI::ERR_SUCCESS;
}

} // namespace NAMESPACE_Ostrel
