#include "Ostrel/PluginApi.h"
#include "Records/Trace.h"

#include <PI/ErrorCode.h>
#include <PI/EventCode.h>
#include <TLX/Clock.h>

#include <cstdint>
#include <iterator>
#include <optional>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <utility>

namespace NAMESPACE_Ostrel {
namespace {

PI::CEvent adapterEvent(const CNVMeAdapter& adapter, PI::_EVENT_CODE id, PI::_EVENT_SEVERITY severity)
{
    PI::CEvent event;
    event.m_Source = PI::EVENT_SOURCE_HOST;
    event.m_Id = id;
    event.m_Severity = severity;
    event.m_Time = TLX::Misc::now();
    event.SetSource(adapter.m_Name);
    event.SetPlaceHolder1(adapter.m_Name);
    event.SetPlaceHolder2(" ");
    return event;
}

/** The numbers of the adapters that are where they were, or new; `changed` holds records as they were. */
std::unordered_set<std::int32_t> numbersInPlace(const std::vector<CNVMeAdapter>& adapters,
                                                const std::vector<CNVMeAdapter>& changed)
{
    std::unordered_map<std::string_view, std::int32_t> former;
    for (const CNVMeAdapter& adapter : changed)
        former.emplace(adapter.m_SerialNumber, adapter.m_GlobalAdapterNumber);
    std::unordered_set<std::int32_t> numbers;
    for (const CNVMeAdapter& adapter : adapters) {
        const auto found = former.find(adapter.m_SerialNumber);
        if (found == former.end() || found->second == adapter.m_GlobalAdapterNumber)
            numbers.insert(adapter.m_GlobalAdapterNumber);
    }
    return numbers;
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
    std::vector<CNVMeAdapter> reversed(std::make_move_iterator(adapters.rbegin()),
                                       std::make_move_iterator(adapters.rend()));
    if (!changes.m_Events.empty())
        AddEvents(changes.m_Events);
    // Neither of these fails: an event that was not published with its change would come again, or never.
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
    std::optional<CSerialIndex<const CNVMePhysicalDrive>> freshDrives; // for newcomers, which are rare
    const CSerialIndex<CNVMePhysicalDrive> liveDrives(m_PhysicalDrives);

    for (const CNVMeAdapter& fresh : adapters) {
        const CNVMeAdapter* const live = liveAdapters.Find(fresh.m_SerialNumber);
        if (live == nullptr) {
            ++m_Plugin.m_UpdateCount;
            changes.m_Events.push_back(
                adapterEvent(fresh, PI::EVENT_ADAPTER_ADDED, PI::SEVERITY_INFORMATION));
            changes.m_AddedAdapters.push_back(fresh);
            if (!freshDrives)
                freshDrives.emplace(physicalDrives);
            if (const CNVMePhysicalDrive* const drive = freshDrives->Find(fresh.m_SerialNumber))
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
        changes.m_Events.push_back(adapterEvent(live, PI::EVENT_ADAPTER_REMOVED, PI::SEVERITY_WARNING));
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
    // What a failure of the database leaves behind is traced there. The next change of the object mends a row
    // that was not updated, unless the object has moved; the next start mends any.
    std::unordered_set<std::int32_t> taken;
    for (const CNVMeAdapter& adapter : changes.m_AddedAdapters) {
        (void)InsertObjectToDatabase(adapter);
        taken.insert(adapter.m_GlobalAdapterNumber);
    }
    // A newcomer in the slot of another has replaced its row, for slots have numbers. That row is the
    // newcomer's, whether the other one was removed or has moved.
    const auto hasRow = [&taken](const CNVMeAdapter& former) {
        return !taken.contains(former.m_GlobalAdapterNumber);
    };
    for (const CNVMeAdapter& adapter : changes.m_ChangedAdapters)
        if (hasRow(adapter))
            (void)UpdateObjectInDatabase(adapter);
    DeleteRemoved(changes);
    for (const CNVMePhysicalDrive& drive : changes.m_AddedDrives)
        (void)InsertObjectToDatabase(drive);
    for (const CNVMePhysicalDrive& drive : changes.m_ChangedDrives)
        (void)UpdateObjectInDatabase(drive);
    (void)UpdateObjectInDatabase(m_Plugin);
}

void IPLUGINAPI_IMPL::DeleteRemoved(const CChanges& changes)
{
    if (changes.m_RemovedAdapters.empty())
        return;
    // Places that differ in their segment alone share a number, and so a row.
    const auto numbers = numbersInPlace(m_Adapters, changes.m_ChangedAdapters);
    for (const CNVMeAdapter& adapter : changes.m_RemovedAdapters)
        if (!numbers.contains(adapter.m_GlobalAdapterNumber))
            (void)DeleteObjectFromDatabase(adapter);
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
    const CTracedGuard guard(m_EventsLock, "m_EventsLock", OSTREL_WITHIN("UpdateSystem"));
    // The newest comes first; hosts rely on that order within a cycle.
    m_Events.insert(m_Events.end(), events.rbegin(), events.rend());
}

} // namespace NAMESPACE_Ostrel
