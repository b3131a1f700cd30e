#pragma once

#include "Base/Failure.h"
#include "Base/Warn.h"
#include "Plugins/AdapterIdentities.h"
#include "Plugins/ObjectStore.h"
#include "Plugins/PluginSet.h"

#include <PI/Event.h>

#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

namespace Host {

/**
 * Does a host's work for one plug-in that watches its drives. Every function throws `Failure` when the
 * plug-in refuses a request. Use it from one thread only. The plug-in's worker runs at the same time.
 */
class Monitor
{
public:
    /**
     * Takes the inventory of the plug-in. The plug-in must live as long as this object. The numbers that
     * adapters get later are kept in the folder `data`.
     */
    Monitor(EquippedPlugin plugin, std::filesystem::path data, Warn warn);
    /** Stops the plug-in if it still runs. */
    ~Monitor();
    Monitor(const Monitor&) = delete;
    Monitor& operator=(const Monitor&) = delete;

    /** Gives the plug-in the numbers of its adapters. This starts its worker. */
    void start();

    /** An auto-reset event that is signalled when there is something to collect. */
    TLX::Threading::CEvent& notified() { return m_Plugin.notified(); }

    /**
     * Takes the pending events, in the plug-in's order. After that `objects()` is the state that they led to,
     * and adapters in new places have numbers. If the plug-in refuses to show its objects, they stay as they
     * were and a warning is given once.
     */
    std::vector<PI::CEvent> collect();

    /**
     * Drops the pending events and reads the objects. Costs less than `collect`, but a cycle that ends
     * meanwhile may have events that are not dropped. Waits for a cycle that is under way. Returns whether
     * there were events.
     */
    bool renew();

    /** Whether adapters got numbers, and so names, after `objects()` was read. */
    bool hasNewNames() const { return m_HasNewNames; }

    /** Reads the objects again, without a signal of the plug-in. Warns as `collect` does. */
    void refresh();

    /** Reads the objects and returns them. `objects()` does not change. */
    ObjectStore look() const { return ObjectStore(m_Plugin.topology()); }

    /** How the plug-in's worker has ended; `ByItself` while it runs as it should. */
    Ending ending() const { return m_Ending; }

    /** The objects of the last look. */
    const ObjectStore& objects() const { return m_Objects; }

    /** The plug-in's own object in `objects()`. */
    const PI::CObject& pluginObject() const;

    /** The plug-in's poll interval in milliseconds, or 0 when it does not show one. */
    std::uint64_t pollInterval() const;

    /** Why `objects()` is older than the last look. Empty when it is not. */
    const std::string& complaint() const { return m_Complaint; }

    /**
     * Stops the plug-in. Pending events can still be collected, unless the worker has not ended. Then the
     * plug-in must not be asked any more.
     */
    Ending stop();

private:
    void readObjects();
    void nameNewcomers();
    void complain(const Failure& failure);

    PluginLibrary& m_Plugin;
    const std::vector<PI::CAdapterID> m_Locations; ///< as request 1 returned them
    const std::filesystem::path m_Data;
    const Warn m_Warn;
    AdapterIdentities m_Identities;
    ObjectStore m_Objects;
    std::string m_Complaint; ///< the last complaint, while its reason lasts
    bool m_HasNewNames = false;
    bool m_Running = false;
    Ending m_Ending = Ending::ByItself;
};

} // namespace Host
