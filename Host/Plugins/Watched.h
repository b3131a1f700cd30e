#pragma once

#include "Base/Warn.h"
#include "Drives/ParallelDrives.h"
#include "Plugins/KeptRows.h"
#include "Plugins/KnownControllers.h"
#include "Plugins/Monitor.h"
#include "Plugins/ObjectStore.h"
#include "Plugins/PluginSet.h"

#include <PI/Event.h>

#include <cstdint>
#include <filesystem>
#include <list>
#include <memory>
#include <optional>
#include <string>
#include <vector>

namespace Host {

/** What a host watches, and where it keeps what it sees. */
struct WatchPlan
{
    std::vector<std::filesystem::path> m_Plugins;
    std::filesystem::path m_Data; ///< an empty path: nothing is kept
    std::shared_ptr<ParallelDrives> m_Drives;
    Warn m_Warn;
};

/**
 * The plug-ins with running workers. Each has the numbers of its adapters. The destructor stops them at the
 * latest.
 */
class Watched
{
public:
    /**
     * Loads the plug-ins and takes their inventory. The inventory is kept in the data folder. Throws
     * `Failure`.
     */
    explicit Watched(const WatchPlan& plan);

    /** Starts the workers of the plug-ins. Call it once. Throws `Failure`. */
    void start();

    /** The monitors of the plug-ins that found drives. There is at least one. */
    std::list<Monitor>& monitors() { return m_Monitors; }

    /**
     * Takes the pending events of `monitor`, which is one of `monitors()`. After that the rows of vanished
     * objects are removed, too.
     */
    std::vector<PI::CEvent> collect(Monitor& monitor);

    /**
     * Takes the pending events of all plug-ins and drops them, reads the objects, and removes the rows of
     * vanished objects if any row may have changed. Controllers are looked at when `answers`, those of the
     * last round, give a reason (see `KnownControllers`). Waits for a cycle of a worker that is under way.
     */
    void refresh(const std::vector<DriveAnswer>& answers);

    /** From now on no controller is looked at, because a drive that hangs could keep the program from ending.
     */
    void stopLooking() { m_Looks = false; }

    /**
     * Reports once when rows could not be written, because the plug-ins do not report that. Costs almost
     * nothing.
     */
    void tellFailure() { m_Rows.tellFailure(); }

    /** Why `objects` may be older than the last look. Empty when it is not. */
    std::string complaint() const;

    /** The plug-in that shows this object. */
    PluginLibrary& showing(std::uint64_t objectId) { return m_Plugins.showing(objectId); }

    /** The objects that all plug-ins showed at the last look. */
    ObjectStore objects() const { return objects(m_Drives->lastRound().m_Answers); }

    /** The same with these answers of the drives. */
    ObjectStore objects(std::vector<DriveAnswer> answers) const;

    /** What `monitor`, one of `monitors()`, showed at the last look. `answers` are those of its drives. */
    ObjectStore objectsOf(const Monitor& monitor, std::vector<DriveAnswer> answers) const;

private:
    void cleanUp();
    bool mayLook() const;

    const std::filesystem::path m_Data;
    const std::shared_ptr<ParallelDrives> m_Drives;
    PluginSet m_Plugins;
    std::list<Monitor> m_Monitors;
    KeptRows m_Rows;
    std::optional<std::int64_t> m_Changes; ///< of rows, before the last look of `refresh`
    bool m_Looks = true;
    KnownControllers m_Controllers;
};

} // namespace Host
