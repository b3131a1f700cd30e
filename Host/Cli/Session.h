#pragma once

#include "Cli/CommandLine.h"
#include "Core/HostSetup.h"
#include "Core/ObjectStore.h"
#include "Core/PluginLibrary.h"

#include <filesystem>

namespace Host::Cli {

/** What the commands work with: the prepared process, and who to tell what is not a result. */
struct Session
{
    using Warn = SimulatedFleet::Warn;

    const Options& m_Options;
    const HostSetup& m_Setup;
    HostFolders m_Folders;
    std::filesystem::path m_Plugin;
    Warn m_Warn;

    bool simulated() const { return m_Setup.fleet() != nullptr; }
};

/** What the plug-in shows. It stays loaded meanwhile, for the texts of its codes go with it. */
class Inventory
{
public:
    /** Loads the plug-in and asks it. Throws `Failure`. */
    explicit Inventory(const Session& session);

    const ObjectStore& objects() const { return m_Objects; }

private:
    PluginLibrary m_Plugin;
    ObjectStore m_Objects;
};

} // namespace Host::Cli
