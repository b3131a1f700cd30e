#include "Plugins/Watched.h"

#include "Base/Failure.h"
#include "Plugins/DataFolder.h"

#include <Database/Maintenance.h>
#include <DatabaseORM/DatabaseException.h>

#include <algorithm>
#include <utility>

namespace Host {
namespace {

/** Nothing when the database cannot be used. */
std::optional<std::int64_t> changesNow()
{
    try {
        return countDatabaseChanges();
    } catch (const DBEXCEPTION::DatabaseException&) {
        return std::nullopt;
    }
}

} // namespace

Watched::Watched(const WatchPlan& plan) : m_Drives(plan.m_Drives), m_Rows(plan.m_Warn)
{
    (void)beginInventory(m_Plugins, plan.m_Plugins, plan.m_Warn);
    for (EquippedPlugin& plugin : m_Plugins.initialize())
        m_Monitors.emplace_back(std::move(plugin), plan.m_Data, plan.m_Warn);
    cleanUp();
    m_Controllers.read();
    keepAdapterNumbers(plan.m_Data, plan.m_Warn);
}

void Watched::start()
{
    for (Monitor& monitor : m_Monitors)
        monitor.start();
}

std::vector<PI::CEvent> Watched::collect(Monitor& monitor)
{
    std::vector<PI::CEvent> events = monitor.collect();
    cleanUp();
    if (mayLook())
        m_Controllers.read();
    return events;
}

void Watched::refresh(const std::vector<DriveAnswer>& answers)
{
    const std::optional<std::int64_t> changes = changesNow();
    bool anyEvent = false;
    for (Monitor& monitor : m_Monitors) {
        anyEvent = monitor.renew() || anyEvent;
        if (monitor.hasNewNames())
            monitor.refresh();
    }
    if (anyEvent || !changes || changes != std::exchange(m_Changes, changes))
        cleanUp();
    else
        tellFailure();
    if (mayLook())
        m_Controllers.follow(answers);
}

void Watched::cleanUp()
{
    const auto look = [this] {
        std::vector<PI::CObject> all;
        for (const Monitor& monitor : m_Monitors) {
            const ObjectStore shown = monitor.look();
            all.insert(all.end(), shown.objects().begin(), shown.objects().end());
        }
        return ObjectStore(std::move(all));
    };
    // A plug-in that may not be asked may still have drives with rows.
    if (std::any_of(m_Monitors.begin(), m_Monitors.end(),
                    [](const Monitor& monitor) { return monitor.ending() == Ending::NotYet; }))
        return;
    try {
        m_Rows.cleanUp(look);
    } catch (const Failure&) {
        // The monitor has already reported it.
    }
}

bool Watched::mayLook() const
{
    // Where a plug-in was stuck, the program would be, too.
    return m_Looks && std::all_of(m_Monitors.begin(), m_Monitors.end(), [](const Monitor& monitor) {
               return monitor.ending() == Ending::ByItself;
           });
}

std::string Watched::complaint() const
{
    for (const Monitor& monitor : m_Monitors)
        if (!monitor.complaint().empty())
            return monitor.complaint();
    return {};
}

ObjectStore Watched::objectsOf(const Monitor& monitor, std::vector<DriveAnswer> answers) const
{
    return {monitor.objects(), m_Controllers.states(), std::move(answers)};
}

ObjectStore Watched::objects(std::vector<DriveAnswer> answers) const
{
    if (m_Monitors.size() == 1)
        return objectsOf(m_Monitors.front(), std::move(answers));
    std::vector<PI::CObject> all;
    for (const Monitor& monitor : m_Monitors) {
        const std::vector<PI::CObject>& objects = monitor.objects().objects();
        all.insert(all.end(), objects.begin(), objects.end());
    }
    return ObjectStore(std::move(all), m_Controllers.states(), std::move(answers));
}

} // namespace Host
