#include "Ostrel/Guarded.h"
#include "Ostrel/PluginApi.h"
#include "Records/Trace.h"

#include <PI/ErrorCode.h>
#include <PI/EventCode.h>
#include <TLX/Clock.h>
#include <TLX/ForcedEnd.h>

#include <algorithm>
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

/** The places of adapters, by serial number. */
class CPlaces
{
public:
    explicit CPlaces(const std::vector<CNVMeAdapter>& adapters)
    {
        for (const CNVMeAdapter& adapter : adapters)
            m_Numbers.emplace(adapter.m_SerialNumber, adapter.m_GlobalAdapterNumber);
    }

    /** Whether an adapter with this serial number exists, but none of them has this number. */
    bool HasElsewhere(const CNVMeAdapter& adapter) const
    {
        const auto [first, last] = m_Numbers.equal_range(adapter.m_SerialNumber);
        return first != last && std::none_of(first, last, [&adapter](const auto& place) {
                   return place.second == adapter.m_GlobalAdapterNumber;
               });
    }

private:
    std::unordered_multimap<std::string_view, std::int32_t> m_Numbers;
};

/**
 * Finds the adapters that have moved between two lists. With several of one serial number it looks at all of
 * them.
 */
void compareNumbers(const std::vector<CNVMeAdapter>& before, const std::vector<CNVMeAdapter>& after,
                    CChanges& changes)
{
    const CPlaces former(before);
    const CPlaces present(after);
    for (const CNVMeAdapter& adapter : before)
        if (present.HasElsewhere(adapter))
            changes.m_MovedAdapters.push_back(adapter);
    changes.m_AnyMoved = !changes.m_MovedAdapters.empty() ||
                         std::any_of(after.begin(), after.end(), [&former](const CNVMeAdapter& adapter) {
                             return former.HasElsewhere(adapter);
                         });
}

/**
 * The numbers of the adapters that are in their old places, or new. `changed` has the records before the
 * change.
 */
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
    // After every scan but the first, hosts see the adapters in reverse order. This order is kept.
    std::vector<CNVMeAdapter> reversed(std::make_move_iterator(adapters.rbegin()),
                                       std::make_move_iterator(adapters.rend()));
    for (const auto* former : {&changes.m_MovedAdapters, &changes.m_RemovedAdapters})
        m_LeftNumbers.insert(m_LeftNumbers.end(), former->begin(), former->end());
    if (!changes.m_Events.empty())
        AddEvents(changes.m_Events);
    // Neither step can fail. If an event were not published together with its change, it would come again or
    // never.
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
    std::optional<CSerialIndex<const CNVMePhysicalDrive>> freshDrives; // for new adapters, which are rare
    const CSerialIndex<CNVMePhysicalDrive> liveDrives(m_PhysicalDrives);

    for (const CNVMeAdapter& fresh : adapters) {
        const CNVMeAdapter* const live = liveAdapters.Find(fresh.m_SerialNumber);
        if (live == nullptr) {
            ++m_Plugin.m_UpdateCount;
            changes.m_Events.push_back(
                adapterEvent(fresh, PI::EVENT_ADAPTER_ADDED, PI::EVENT_SEVERITY_INFORMATION));
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
        changes.m_Events.push_back(adapterEvent(live, PI::EVENT_ADAPTER_REMOVED, PI::EVENT_SEVERITY_WARNING));
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
    // A number is part of a record, so that a move is a change. A quiet scan need not pay for the look.
    if (changes.Any())
        compareNumbers(m_Adapters, adapters, changes);
    return changes;
}

void IPLUGINAPI_IMPL::Persist(const CChanges& changes)
{
    const bool rewrite = m_RowsFailed || changes.m_AnyMoved;
    m_RowsFailed = false;
    try {
        WriteChanges(changes);
        // An operation that failed just now is left to the next cycle, unless this one writes all rows anew.
        if (rewrite)
            m_RowsFailed = !RewriteRows();
    } catch (TLX::Threading::CForcedEnd&) {
        throw;
    } catch (...) {
        traceThrown(OSTREL_WITHIN("UpdateSystem"), "UpdateSystem, writing rows,");
        m_RowsFailed = true;
    }
    if (!m_RowsFailed)
        m_LeftNumbers.clear();
}

void IPLUGINAPI_IMPL::WriteChanges(const CChanges& changes)
{
    std::unordered_set<std::int32_t> taken;
    for (const CNVMeAdapter& adapter : changes.m_AddedAdapters) {
        (void)WriteRow(&IPLUGINAPI_IMPL::InsertObjectToDatabase, adapter);
        taken.insert(adapter.m_GlobalAdapterNumber);
    }
    // A new adapter in the slot of another one has replaced its row, because slots have numbers. The row then
    // belongs to the new adapter, whether the other one was removed or has moved.
    const auto hasRow = [&taken](const CNVMeAdapter& former) {
        return !taken.contains(former.m_GlobalAdapterNumber);
    };
    for (const CNVMeAdapter& adapter : changes.m_ChangedAdapters)
        if (hasRow(adapter))
            (void)WriteRow(&IPLUGINAPI_IMPL::UpdateObjectInDatabase, adapter);
    DeleteRemoved(changes);
    for (const CNVMePhysicalDrive& drive : changes.m_AddedDrives)
        (void)WriteRow(&IPLUGINAPI_IMPL::InsertObjectToDatabase, drive);
    for (const CNVMePhysicalDrive& drive : changes.m_ChangedDrives)
        (void)WriteRow(&IPLUGINAPI_IMPL::UpdateObjectInDatabase, drive);
    (void)WriteRow(&IPLUGINAPI_IMPL::UpdateObjectInDatabase, m_Plugin);
}

bool IPLUGINAPI_IMPL::RewriteRows()
{
    // An insert replaces the existing row, if there is one.
    if (!WriteRow(&IPLUGINAPI_IMPL::InsertObjectToDatabase, m_Plugin))
        return false;
    const CSerialIndex<const CNVMePhysicalDrive> drives(m_PhysicalDrives);
    std::unordered_set<std::int32_t> numbers;
    for (const CNVMeAdapter& adapter : m_Adapters) {
        numbers.insert(adapter.m_GlobalAdapterNumber);
        const CNVMePhysicalDrive* const drive = drives.Find(adapter.m_SerialNumber);
        if (!WriteRow(&IPLUGINAPI_IMPL::InsertObjectToDatabase, adapter) ||
            (drive != nullptr && !WriteRow(&IPLUGINAPI_IMPL::InsertObjectToDatabase, *drive)))
            return false;
    }
    for (const CNVMeAdapter& former : m_LeftNumbers)
        if (!numbers.contains(former.m_GlobalAdapterNumber) &&
            !WriteRow(&IPLUGINAPI_IMPL::DeleteObjectFromDatabase, former))
            return false;
    return true;
}

void IPLUGINAPI_IMPL::DeleteRemoved(const CChanges& changes)
{
    if (changes.m_RemovedAdapters.empty())
        return;
    // Places that differ only in their segment share a number, and so a row.
    const auto numbers = numbersInPlace(m_Adapters, changes.m_ChangedAdapters);
    for (const CNVMeAdapter& adapter : changes.m_RemovedAdapters)
        if (!numbers.contains(adapter.m_GlobalAdapterNumber))
            (void)WriteRow(&IPLUGINAPI_IMPL::DeleteObjectFromDatabase, adapter);
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
