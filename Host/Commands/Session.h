#pragma once

#include "Commands/CommandLine.h"
#include "Plugins/HostSetup.h"
#include "Plugins/KeptRows.h"
#include "Plugins/Monitor.h"
#include "Plugins/ObjectStore.h"
#include "Plugins/PluginSet.h"
#include "Terminal/Progress.h"
#include "Terminal/Terminal.h"

#include <TLXX/Diagnosis.h>

#include <nlohmann/json_fwd.hpp>

#include <filesystem>
#include <list>
#include <string>
#include <vector>

namespace Host::Cli {

/** What a command works with: the prepared process, and the terminal that it talks to. */
class Session
{
public:
    /**
     * Prepares the process as plug-ins expect it. Throws `Failure`, also for a command that keeps rows where
     * another process does.
     */
    Session(const Options& options, Terminal& terminal);

    /** Tells what does not end the command. */
    Warn warn() const;

    bool simulated() const { return m_Setup.fleet() != nullptr; }

    /** Whether what is seen is kept in the data folder. */
    bool keepsRows() const { return m_Setup.claim() && m_Setup.claim()->granted(); }

    /** Where that is; empty when it is nowhere. */
    std::filesystem::path keptData() const
    {
        return keepsRows() ? m_Folders.m_Data : std::filesystem::path();
    }

    /** The objects of `store` that the user named. Throws `Failure`. */
    std::vector<const PI::CObject*> namedObjects(const ObjectStore& store) const;

    /**
     * Prints the command's result: a text, or one document. Says so where the drives are simulated. When
     * nobody reads any more, enough has been read, and what the command found still makes the exit code.
     */
    void print(const std::string& text) const;
    void print(const nlohmann::ordered_json& document) const;
    /** The same for a text that says itself where the drives are simulated. */
    void printAsIs(const std::string& text) const;

    const Options& m_Options;
    Terminal& m_Terminal;
    const HostFolders m_Folders;
    const std::vector<std::filesystem::path> m_Plugins; ///< the installed one first
    const HostSetup m_Setup;
};

/** Lives while request 1 runs: on a terminal it tells when the disks among `states` take their time. */
Progress signOfLife(const std::vector<TLXX::CControllerState>& states, const Session& session);

/** What the plug-ins show. They stay loaded meanwhile, for the texts of their codes go with them. */
class Inventory
{
public:
    /** Loads the plug-ins and asks them. Throws `Failure`. */
    explicit Inventory(const Session& session);

    const ObjectStore& objects() const { return m_Objects; }

    PluginSet& plugins() { return m_Plugins; }

private:
    PluginSet m_Plugins;
    ObjectStore m_Objects;
};

/** The plug-ins at work on their own, each with the numbers of its adapters, until destruction at the latest.
 */
class Watched
{
public:
    /** Loads the plug-ins and takes their inventory, which is kept in the data folder. Throws `Failure`. */
    explicit Watched(const Session& session);

    /** Starts the plug-ins, once. Throws `Failure`. */
    void start();

    /** Of the plug-ins that found drives, at least one. */
    std::list<Monitor>& monitors() { return m_Monitors; }

    /**
     * Takes the events that are pending with `monitor`, one of `monitors()`. The rows of what went are gone
     * then, too.
     */
    std::vector<PI::CEvent> collect(Monitor& monitor);

    /** Tells once when rows could not be written; the plug-ins do not say so. Costs next to nothing. */
    void tellFailure() { m_Rows.tellFailure(); }

    /** What all of them showed at the last look. */
    ObjectStore objects() const;

private:
    void cleanUp();

    PluginSet m_Plugins;
    std::list<Monitor> m_Monitors;
    KeptRows m_Rows;
};

} // namespace Host::Cli
