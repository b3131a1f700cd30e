#include "Plugins/PluginSet.h"

#include "Base/Failure.h"
#include "Drives/DeviceAccess.h"

#include <algorithm>
#include <exception>
#include <iterator>
#include <string>

namespace Host {
namespace {

// The bits of an object's identifier above these are the module number of its plug-in.
constexpr unsigned MODULE_SHIFT = 48;

} // namespace

const PluginLibrary& PluginSet::load(const std::filesystem::path& file)
{
    const PluginLibrary& plugin = m_Plugins.emplace_back(file);
    const auto last = std::prev(m_Plugins.end());
    const auto same = std::find_if(m_Plugins.begin(), last, [&](const PluginLibrary& other) {
        return other.module() == plugin.module();
    });
    if (same == last)
        return plugin;
    const std::string clash = "The plug-ins " + same->file() + " and " + plugin.file() +
                              " both have the module number " + std::to_string(plugin.module()) +
                              ", so their objects could not be told apart.";
    m_Plugins.pop_back();
    throw Failure(ExitCode::WrongUsage, clash);
}

std::vector<EquippedPlugin> PluginSet::initialize()
{
    std::vector<EquippedPlugin> equipped;
    std::exception_ptr noHardware;
    m_Initialized.clear();
    for (PluginLibrary& plugin : m_Plugins)
        try {
            equipped.push_back({plugin, plugin.initialize()});
            m_Initialized.push_back(&plugin);
        } catch (const Failure& failure) {
            if (failure.exitCode() != ExitCode::NoHardware)
                throw;
            if (!noHardware)
                noHardware = std::current_exception();
        }
    if (equipped.empty() && noHardware)
        std::rethrow_exception(noHardware);
    return equipped;
}

std::vector<PI::CObject> PluginSet::inventory()
{
    std::vector<PI::CObject> objects;
    for (const EquippedPlugin& equipped : initialize()) {
        std::vector<PI::CObject> more = equipped.m_Plugin.topology();
        objects.insert(objects.end(), std::make_move_iterator(more.begin()),
                       std::make_move_iterator(more.end()));
    }
    return objects;
}

void PluginSet::deInitialize()
{
    for (PluginLibrary* plugin : m_Initialized)
        (void)plugin->deInitialize();
    m_Initialized.clear();
}

PluginLibrary& PluginSet::showing(std::uint64_t objectId)
{
    const auto found = std::find_if(m_Plugins.begin(), m_Plugins.end(), [&](const PluginLibrary& plugin) {
        return plugin.module() == objectId >> MODULE_SHIFT;
    });
    if (found == m_Plugins.end())
        throw Failure(ExitCode::RequestFailed, "No loaded plug-in has this object.");
    return *found;
}

std::vector<TLXX::CControllerState>
beginInventory(PluginSet& plugins, const std::vector<std::filesystem::path>& files, const Warn& warn)
{
    for (const std::filesystem::path& file : files)
        plugins.load(file);
    std::vector<TLXX::CControllerState> states = TLXX::controllerStates();
    checkAccess(states, warn);
    return states;
}

} // namespace Host
