#include "Cli/Session.h"

#include "Core/DataFolder.h"
#include "Core/DeviceAccess.h"

namespace Host::Cli {

namespace {

ObjectStore takeInventory(PluginLibrary& plugin, const Session& session)
{
    checkAccess(TLXX::controllerStates(), session.m_Warn);
    plugin.initialize();
    ObjectStore inventory(plugin.topology());
    if (session.m_Folders.m_KeepsRows)
        keepInventory(session.m_Folders.m_Data, inventory, session.m_Warn);
    return inventory;
}

} // namespace

Inventory::Inventory(const Session& session)
    : m_Plugin(session.m_Plugin), m_Objects(takeInventory(m_Plugin, session))
{}

} // namespace Host::Cli
