#pragma once

#include "Base/Warn.h"
#include "Plugins/PluginLibrary.h"

#include <PI/Object.h>
#include <TLXX/Diagnosis.h>

#include <cstdint>
#include <deque>
#include <filesystem>
#include <vector>

namespace Host {

/** A plug-in that found hardware, and the locations of its adapters. */
struct EquippedPlugin
{
    PluginLibrary& m_Plugin;
    std::vector<PI::CAdapterID> m_Locations;
};

/** The plug-ins that are loaded. Each must have its own module number. */
class PluginSet
{
public:
    /** Throws `Failure` as `PluginLibrary` does, and when a loaded plug-in has the same module number. */
    const PluginLibrary& load(const std::filesystem::path& file);

    bool empty() const { return m_Plugins.empty(); }

    /**
     * Sends request 1 to each plug-in, in the order of loading. A plug-in that finds no hardware is left out
     * if another one finds some. Throws `Failure`.
     */
    std::vector<EquippedPlugin> initialize();

    /** Requests 1 and 4: all objects, in the order of loading. Throws as `initialize` does. */
    std::vector<PI::CObject> inventory();

    /** Sends request 3 to each plug-in that the last `initialize` returned. Throws `Failure`. */
    void deInitialize();

    /** The plug-in that shows this object of the inventory. */
    PluginLibrary& showing(std::uint64_t objectId);

private:
    std::deque<PluginLibrary> m_Plugins;
    std::vector<PluginLibrary*> m_Initialized;
};

/**
 * Loads these plug-ins and warns of the devices that this user may not open. Returns what the system says of
 * the controllers. Throws `Failure` as `PluginSet::load` does, and when this user may open no device.
 */
std::vector<TLXX::CControllerState>
beginInventory(PluginSet& plugins, const std::vector<std::filesystem::path>& files, const Warn& warn);

} // namespace Host
