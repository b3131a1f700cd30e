#include "Commands/Session.h"

#include "Base/Failure.h"
#include "Drives/DeviceAccess.h"
#include "Plugins/DataFolder.h"

#include <algorithm>
#include <exception>
#include <functional>
#include <utility>

namespace Host::Cli {

namespace {

/** Loads the plug-ins and says which devices refuse. */
std::vector<TLXX::CControllerState> beginInventory(PluginSet& plugins, const Session& session)
{
    for (const std::filesystem::path& file : session.m_Plugins)
        plugins.load(file);
    std::vector<TLXX::CControllerState> states = TLXX::controllerStates();
    checkAccess(states, session.warn());
    return states;
}

ObjectStore takeInventory(PluginSet& plugins, const Session& session)
{
    const std::vector<TLXX::CControllerState> states = beginInventory(plugins, session);
    const Progress progress = signOfLife(states, session);
    ObjectStore inventory(plugins.inventory(), states);
    if (session.keepsRows())
        keepInventory(session.keptData(), inventory, session.warn());
    return inventory;
}

/** None when the system cannot tell just now: events must not be lost because of an address. */
std::vector<TLXX::CControllerState> controllersNow()
{
    try {
        return TLXX::controllerStates();
    } catch (const std::exception&) {
        return {};
    }
}

} // namespace

Progress signOfLife(const std::vector<TLXX::CControllerState>& states, const Session& session)
{
    // Trace lines are a sign of life themselves, and must not be torn.
    const TraceOptions& trace = session.m_Options.m_Trace;
    const bool traced = trace.wanted() && !trace.m_File;
    return Progress(countDisks(states), traced ? nullptr : &session.m_Messages);
}

Inventory::Inventory(const Session& session) : m_Objects(takeInventory(m_Plugins, session)) {}

Watched::Watched(const Session& session) : m_Rows(session.warn())
{
    const Progress progress = signOfLife(beginInventory(m_Plugins, session), session);
    for (EquippedPlugin& plugin : m_Plugins.initialize())
        m_Monitors.emplace_back(std::move(plugin), session.keptData(), session.warn());
    cleanUp();
    keepAdapterNumbers(session.keptData(), session.warn());
    for (Monitor& monitor : m_Monitors)
        monitor.start();
}

std::vector<PI::CEvent> Watched::collect(Monitor& monitor)
{
    std::vector<PI::CEvent> events = monitor.collect();
    cleanUp();
    return events;
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
    // Who cannot be asked may still have drives, and rows of theirs.
    if (!std::all_of(m_Monitors.begin(), m_Monitors.end(), std::mem_fn(&Monitor::mayBeAsked)))
        return;
    try {
        m_Rows.cleanUp(look);
    } catch (const Failure&) {
        // The monitor has told it.
    }
}

ObjectStore Watched::objects() const
{
    std::vector<PI::CObject> all;
    for (const Monitor& monitor : m_Monitors) {
        const std::vector<PI::CObject>& objects = monitor.objects().objects();
        all.insert(all.end(), objects.begin(), objects.end());
    }
    return ObjectStore(std::move(all), controllersNow());
}

} // namespace Host::Cli
