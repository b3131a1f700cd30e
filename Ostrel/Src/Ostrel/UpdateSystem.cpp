#include "Ostrel/EventCodes.h"
#include "Ostrel/PluginApi.h"
#include "Ostrel/Trace.h"

#include <PI/ErrorCode.h>
#include <TLX/Clock.h>

#include <algorithm>
#include <utility>

namespace NAMESPACE_Ostrel {
namespace {

PI::CEvent adapterEvent(const CNVMeAdapter& adapter, EventCode id, EventSeverity severity)
{
    PI::CEvent event;
    event.m_Source = EVENT_SOURCE_HOST;
    event.m_Id = id;
    event.m_Severity = severity;
    event.m_Time = TLX::Misc::now();
    event.SetSource(adapter.m_Name);
    event.SetPlaceHolder1(adapter.m_Name);
    event.SetPlaceHolder2(" ");
    return event;
}

} // namespace

std::uint32_t IPLUGINAPI_IMPL::UpdateSystem(std::vector<CNVMeAdapter>& adapters,
                                            std::vector<CNVMePhysicalDrive>& physicalDrives)
{
    OSTREL_TRACE(TRACE_FLOW) << "ENTER UpdateSystem for %d adapter, %d physicalDrives" << adapters.size()
                             << physicalDrives.size();
    const CChanges changes = Compare(adapters, physicalDrives);
    LinkAdapters(adapters);
    // Hosts have always seen the adapters of every scan but the first from the last to the first.
    std::vector<CNVMeAdapter> reversed(adapters.rbegin(), adapters.rend());
    if (!changes.m_Events.empty())
        AddEvents(changes.m_Events);
    // Nothing fails from here on: an event that was not published with its change would come again, or never.
    m_Adapters = std::move(reversed);
    m_PhysicalDrives = std::move(physicalDrives);
    Persist(changes);

    const std::uint32_t result = changes.Any() ? PI::ERR_SUCCESS : PI::ERR_GENERAL_FAILURE;
    OSTREL_TRACE(TRACE_FLOW) << "LEAVE UpdateSystem ret = %d" << result;
    return result;
}

CChanges IPLUGINAPI_IMPL::Compare(const std::vector<CNVMeAdapter>& adapters,
                                  const std::vector<CNVMePhysicalDrive>& physicalDrives)
{
    CChanges changes;
    const CSerialIndex<const CNVMeAdapter> freshAdapters(adapters);
    const CSerialIndex<const CNVMeAdapter> liveAdapters(m_Adapters);
    const CSerialIndex<const CNVMePhysicalDrive> freshDrives(physicalDrives);
    const CSerialIndex<CNVMePhysicalDrive> liveDrives(m_PhysicalDrives);

    for (const CNVMeAdapter& fresh : adapters) {
        const CNVMeAdapter* const live = liveAdapters.Find(fresh.m_SerialNumber);
        if (live == nullptr) {
            ++m_Plugin.m_UpdateCount;
            changes.m_Events.push_back(adapterEvent(fresh, EVENT_ADAPTER_ADDED, SEVERITY_INFORMATION));
            changes.m_AddedAdapters.push_back(fresh);
            if (const CNVMePhysicalDrive* const drive = freshDrives.Find(fresh.m_SerialNumber))
                changes.m_AddedDrives.push_back(*drive);
        } else if (*live != fresh) {
            live->Update(fresh, changes.m_Events);
            changes.m_ChangedAdapters.push_back(*live);
        }
    }
    for (const CNVMeAdapter& live : m_Adapters) {
        if (freshAdapters.Find(live.m_SerialNumber) != nullptr)
            continue;
        ++m_Plugin.m_UpdateCount;
        changes.m_Events.push_back(adapterEvent(live, EVENT_ADAPTER_REMOVED, SEVERITY_WARNING));
        changes.m_RemovedAdapters.push_back(live);
    }
    for (const CNVMePhysicalDrive& fresh : physicalDrives) {
        CNVMePhysicalDrive* const live = liveDrives.Find(fresh.m_SerialNumber);
        if (live == nullptr || *live == fresh)
            continue;
        const CNVMeAdapter* const owner = freshAdapters.Find(fresh.m_SerialNumber);
        if (owner == nullptr)
            continue;
        live->Update(fresh, *owner, changes.m_Events);
        live->m_DeviceIndex = static_cast<std::uint32_t>(owner->m_GlobalAdapterNumber);
        changes.m_ChangedDrives.push_back(*live);
    }
    return changes;
}

void IPLUGINAPI_IMPL::Persist(const CChanges& changes)
{
    // What a failure of the database leaves behind is traced there, and the next change of the object mends
    // it.
    for (const CNVMeAdapter& adapter : changes.m_AddedAdapters)
        (void)InsertObjectToDatabase(adapter);
    for (const CNVMeAdapter& adapter : changes.m_ChangedAdapters)
        (void)UpdateObjectInDatabase(adapter);
    for (const CNVMeAdapter& adapter : changes.m_RemovedAdapters) {
        // An adapter that took the slot of a removed one has taken its row by the same number.
        const bool replaced =
            std::any_of(m_Adapters.begin(), m_Adapters.end(), [&](const CNVMeAdapter& live) {
                return live.m_GlobalAdapterNumber == adapter.m_GlobalAdapterNumber;
            });
        if (!replaced)
            (void)DeleteObjectFromDatabase(adapter);
    }
    for (const CNVMePhysicalDrive& drive : changes.m_AddedDrives)
        (void)InsertObjectToDatabase(drive);
    for (const CNVMePhysicalDrive& drive : changes.m_ChangedDrives)
        (void)UpdateObjectInDatabase(drive);
    (void)UpdateObjectInDatabase(m_Plugin);
}

void IPLUGINAPI_IMPL::LinkAdapters(std::vector<CNVMeAdapter>& adapters)
{
    m_Plugin.m_Children.clear();
    for (CNVMeAdapter& adapter : adapters) {
        adapter.m_Parents.assign(1, m_Plugin.m_ID);
        m_Plugin.m_Children.push_back(adapter.m_ID);
    }
}

void IPLUGINAPI_IMPL::AddEvents(const std::vector<PI::CEvent>& events)
{
    const CTracedGuard guard(m_EventsLock, "m_EventsLock", OSTREL_HERE);
    // The newest comes first; hosts rely on that order within a cycle.
    m_Events.insert(m_Events.end(), events.rbegin(), events.rend());
}

} // namespace NAMESPACE_Ostrel
