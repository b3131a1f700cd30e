#include "Cli/Session.h"

#include "Core/DeviceAccess.h"

namespace Host::Cli {

namespace {

ObjectStore takeInventory(PluginLibrary& plugin, const Session& session)
{
    checkAccess(TLXX::controllerStates(), session.m_Warn);
    plugin.initialize();
    return ObjectStore(plugin.topology());
}

} // namespace

Inventory::Inventory(const Session& session)
    : m_Plugin(session.m_Plugin), m_Objects(takeInventory(m_Plugin, session))
{}

} // namespace Host::Cli
