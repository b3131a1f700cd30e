#pragma once

#include "Base/Failure.h"
#include "Base/Warn.h"
#include "Plugins/AdapterIdentities.h"
#include "Plugins/ObjectStore.h"
#include "Plugins/PluginSet.h"

#include <PI/Event.h>

#include <filesystem>
#include <string>
#include <vector>

namespace Host {

/**
 * A plug-in that watches its drives, looked after as a host does. Everything here throws `Failure` when the
 * plug-in refuses a request, and is for one thread; the plug-in's own runs beside it.
 */
class Monitor
{
public:
    /**
     * Takes the inventory of the plug-in, which lives as long as this. The numbers that adapters get while it
     * watches are kept in the folder `data`.
     */
    Monitor(EquippedPlugin plugin, std::filesystem::path data, Warn warn);
    /** Stops the plug-in, if nobody has yet. */
    ~Monitor();
    Monitor(const Monitor&) = delete;
    Monitor& operator=(const Monitor&) = delete;

    /** Hands the plug-in the numbers of its adapters. From then on it watches. */
    void start();

    /** An auto-reset event that fires when there is something to collect. */
    TLX::Threading::CEvent& notified() { return m_Plugin.notified(); }

    /**
     * Takes the events that are pending, in the plug-in's order. `objects()` is then the state that they led
     * to, and adapters in new places have their numbers. A plug-in that does not tell its state any more is
     * complained of once; its objects stay as they were.
     */
    std::vector<PI::CEvent> collect();

    /** Looks again what there is, whether the plug-in has called or not; complains as `collect` does. */
    void refresh();

    /** What there is now; `objects()` stays as it was. */
    ObjectStore look() const { return ObjectStore(m_Plugin.topology()); }

    /** How the watching has ended; `ByItself` while it lasts. */
    Ending ending() const { return m_Ending; }

    /** What there was at the last look. */
    const ObjectStore& objects() const { return m_Objects; }

    /** Among them, the plug-in's own object. */
    const PI::CObject& pluginObject() const;

    /**
     * Ends the watching. What is pending can still be collected, unless it has not ended: then the plug-in
     * must not be asked anything any more.
     */
    Ending stop();

private:
    void nameNewcomers();
    void complain(const Failure& failure);

    PluginLibrary& m_Plugin;
    const std::vector<PI::CAdapterID> m_Locations; ///< as request 1 told them
    const std::filesystem::path m_Data;
    const Warn m_Warn;
    AdapterIdentities m_Identities;
    ObjectStore m_Objects;
    std::string m_Complaint; ///< the last one, while it lasts
    bool m_Running = false;
    Ending m_Ending = Ending::ByItself;
};

} // namespace Host
