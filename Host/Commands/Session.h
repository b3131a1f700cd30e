#pragma once

#include "Commands/CommandLine.h"
#include "Plugins/HostSetup.h"
#include "Plugins/ObjectStore.h"
#include "Plugins/PluginSet.h"
#include "Plugins/Watched.h"
#include "Terminal/Progress.h"
#include "Terminal/Terminal.h"

#include <TLXX/Diagnosis.h>

#include <nlohmann/json_fwd.hpp>

#include <filesystem>
#include <string>
#include <vector>

namespace Host::Cli {

/** What a command needs: the prepared process, and the terminal for its output. */
class Session
{
public:
    /**
     * Prepares the process as plug-ins expect it. Throws `Failure`. It also does so when a command must keep
     * rows while another process keeps rows in the same folder.
     */
    Session(const Options& options, Terminal& terminal);

    /** Receives warnings that do not end the command. */
    Warn warn() const;

    bool simulated() const { return m_Setup.fleet() != nullptr; }

    /** What reads the drives; never null. */
    const std::shared_ptr<ParallelDrives>& drives() const { return m_Setup.drives(); }

    /** Whether the command keeps what it sees in the data folder. */
    bool keepsRows() const { return m_Setup.claim() && m_Setup.claim()->granted(); }

    /** The data folder, or an empty path when nothing is kept. */
    std::filesystem::path keptData() const
    {
        return keepsRows() ? m_Folders.m_Data : std::filesystem::path();
    }

    /** What this command watches. */
    WatchPlan watchPlan() const;

    /** Which drives answered in the last round. */
    std::vector<DriveAnswer> answers() const;

    /** The objects of `store` that the user named. Throws `Failure`. */
    std::vector<const PI::CObject*> namedObjects(const ObjectStore& store) const;

    /**
     * Prints the command's result, a text or one document. Says if the drives are simulated. When the reader
     * has closed the output, this is no error, and the result of the command still decides the exit code.
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

/**
 * Shows on a terminal, after a while, that the disks among `states` are being asked. Keep it while request 1
 * runs.
 */
Progress signOfLife(const std::vector<TLXX::CControllerState>& states, const Session& session);

/**
 * What the plug-ins show, and which drives answered. Without any object when the plug-ins found no drive, and
 * there is one that does not answer. Throws `Failure`.
 */
ObjectStore askForObjects(PluginSet& plugins, const std::vector<TLXX::CControllerState>& states,
                          const Session& session);

/**
 * The objects that the plug-ins show. The plug-ins stay loaded, because the texts of their codes would be
 * unloaded with them.
 */
class Inventory
{
public:
    /** Loads the plug-ins and asks them. Throws `Failure`. */
    explicit Inventory(const Session& session);

    const ObjectStore& objects() const { return m_Objects; }

    /** Asks every drive once more. Throws `Failure`. */
    void askAgain(const Session& session);

    PluginSet& plugins() { return m_Plugins; }

private:
    PluginSet m_Plugins;
    ObjectStore m_Objects;
};

} // namespace Host::Cli
