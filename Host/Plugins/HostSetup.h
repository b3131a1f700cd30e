#pragma once

#include "Base/Warn.h"
#include "Drives/ParallelDrives.h"
#include "Drives/SimulatedFleet.h"
#include "Plugins/DataFolder.h"

#include <cstdint>
#include <filesystem>
#include <map>
#include <memory>
#include <optional>

namespace Host {

/** What a host prepares before it loads plug-ins. */
struct HostFolders
{
    std::filesystem::path m_Share; ///< catalogue and endurance table
    std::filesystem::path m_Data;  ///< settings
    bool m_KeepsRows = false;      ///< the data folder holds the database, too; otherwise no rows are kept
    std::uint64_t m_Patience = 0;  ///< milliseconds to wait for another process that keeps rows there
    std::optional<std::filesystem::path> m_Reader = {}; ///< socket of a reader; see `machineDrives`
};

struct TraceOptions
{
    std::uint32_t m_Mask = 0;                             ///< of every module that has no mask of its own
    std::map<std::uint32_t, std::uint32_t> m_ModuleMasks; ///< by module number
    std::optional<std::filesystem::path> m_File;          ///< none: traces go to standard error

    /** Whether any trace line may be written. */
    bool wanted() const;
};

/** The settings file in a data folder. */
std::filesystem::path settingsFile(const std::filesystem::path& data);

/** The share folder that belongs to a program in `programFolder`. */
std::filesystem::path shareFolder(const std::filesystem::path& programFolder);

/** The plug-in that was installed with a program in `programFolder`. */
std::filesystem::path installedPlugin(const std::filesystem::path& programFolder);

/**
 * Prepares the process as plug-ins expect it. Sets the folders, starts the traces, lets the drives be read
 * side by side, and puts a simulated fleet in place of the machine if one was asked for. The destructor ends
 * all of this. Only one may exist at a time.
 */
class HostSetup
{
public:
    /** Throws `Failure` when the trace file, the fleet file or the folder for the rows cannot be used. */
    HostSetup(const HostFolders& folders, const TraceOptions& trace,
              const std::optional<std::filesystem::path>& fleetFile, const Warn& warn);
    ~HostSetup();
    HostSetup(const HostSetup&) = delete;
    HostSetup& operator=(const HostSetup&) = delete;

    /** The right to keep rows. None when this run keeps no rows. After a refusal no rows are kept. */
    const std::optional<DataFolderClaim>& claim() const { return m_Claim; }

    /** The simulated fleet. Null when the machine's own drives are shown. */
    const std::shared_ptr<SimulatedFleet>& fleet() const { return m_Fleet; }

    /** What reads the drives; never null. */
    const std::shared_ptr<ParallelDrives>& drives() const { return m_Drives; }

private:
    std::shared_ptr<SimulatedFleet> m_Fleet;
    std::shared_ptr<TLXX::IDeviceBackend> m_Former; ///< the back-end that was in use before
    std::shared_ptr<ParallelDrives> m_Drives;
    std::optional<DataFolderClaim> m_Claim;
    const TraceOptions m_Trace;
};

} // namespace Host
