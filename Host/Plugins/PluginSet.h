#pragma once

#include "Plugins/PluginLibrary.h"

#include <PI/Object.h>

#include <cstdint>
#include <deque>
#include <filesystem>
#include <vector>

namespace Host {

/** A plug-in that found hardware, and where its adapters sit. */
struct EquippedPlugin
{
    PluginLibrary& m_Plugin;
    std::vector<PI::CAdapterID> m_Locations;
};

/** The plug-ins that are loaded side by side, each with a module number of its own. */
class PluginSet
{
public:
    /** Throws `Failure` as `PluginLibrary` does, and for a second plug-in of one module number. */
    const PluginLibrary& load(const std::filesystem::path& file);

    bool empty() const { return m_Plugins.empty(); }

    /**
     * Request 1 of each, in the order of loading. A plug-in that finds no hardware is left out as long as
     * another one finds some. Throws `Failure`.
     */
    std::vector<EquippedPlugin> initialize();

    /** Requests 1 and 4: all objects, in the order of loading. Throws as `initialize` does. */
    std::vector<PI::CObject> inventory();

    /** Request 3 of each that `initialize` returned last. Throws `Failure`. */
    void deInitialize();

    /** The plug-in that shows the object `objectId` of the inventory. */
    PluginLibrary& showing(std::uint64_t objectId);

private:
    std::deque<PluginLibrary> m_Plugins;
    std::vector<PluginLibrary*> m_Initialized;
};

} // namespace Host
