#pragma once

#include "FileDescriptor.h"
#include "NvmeNames.h"

#include <TLXX/DeviceBackend.h>
#include <TLXX/Linux/DiskOwner.h>
#include <TLXX/PciLocation.h>

#include <cstdint>
#include <filesystem>
#include <mutex>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace TLXX::Linux {

/** The result of the last enumeration, kept so that queries need not walk sysfs. Safe from any thread. */
class CDeviceTable
{
public:
    std::filesystem::path Root() const;
    /** The path of a controller's node in sysfs. */
    std::string NodeOf(std::uint32_t instance) const;
    /** Forgets what was found below the former root. */
    void SetRoot(std::filesystem::path root);

    /** Walks sysfs, unless its names show that nothing has come or gone since the last walk. */
    std::vector<CDeviceEntry> Enumerate();

    /** Makes the next enumeration that begins walk sysfs in any case. */
    void LookAnew();

    /** The owner of a disk; looks in sysfs when no enumeration has found the path yet. */
    std::optional<CDiskOwner> Owner(const std::string& path);

    /**
     * The result of `read` for a driver. Reads it again only after a controller has come or gone, because the
     * driver cannot have been replaced before that.
     */
    std::string DriverVersion(const std::string& driver, std::string (*read)(const std::string& driver));

    /** The location of the `number`-th entry of the last enumeration, counted from 1. */
    std::optional<CPciLocation> Location(std::uint32_t number) const;

private:
    /** Called with the lock held. Marks the last walk, and one that is running, as unreliable. */
    void Doubt();

    mutable std::mutex m_Lock; ///< never held while sysfs is read
    std::filesystem::path m_Root = "/sys";
    std::optional<CNvmeNames> m_Names; ///< those of the last walk, if they are reliable
    std::uint64_t m_Doubts = 0;        ///< counted, so that a walk notices those during it
    std::vector<CDeviceEntry> m_Entries;
    std::unordered_map<std::string, CDiskOwner> m_Owners;
    std::vector<std::optional<CPciLocation>> m_Locations;
    std::unordered_map<std::string, std::string> m_DriverVersions; ///< since that walk
    std::uint64_t m_Walks = 0;
};

/** The table of this process. */
CDeviceTable& deviceTable();

/**
 * Opens the controller of this number. `STATUS_NO_DEVICE` when its node in sysfs has not the number `node`,
 * because then another controller may have been opened.
 */
CFileDescriptor openController(std::uint32_t instance, std::uint64_t node);

} // namespace TLXX::Linux
