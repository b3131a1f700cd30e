#pragma once

#include "NvmeNames.h"

#include <TLXX/DeviceBackend.h>
#include <TLXX/PciLocation.h>

#include <cstdint>
#include <filesystem>
#include <mutex>
#include <optional>
#include <string>
#include <unordered_map>
#include <vector>

namespace TLXX::Linux {

/** The controller to which commands for a disk go, and the namespace that they mean. */
struct CDiskOwner
{
    std::uint32_t m_Instance = 0;
    std::uint64_t m_Node = 0; ///< the controller's in sysfs; no controller after it has the same
    std::uint32_t m_NamespaceId = 0;

    /** Tells this disk from any that was or will be at its path. */
    std::string Instance() const;
};

/** What the last enumeration found, kept so that queries need not walk sysfs. Safe from any thread. */
class CDeviceTable
{
public:
    std::filesystem::path Root() const;
    /** Forgets what was found below the former root. */
    void SetRoot(std::filesystem::path root);

    /** Walks sysfs, unless a look at its names tells that nothing has come or gone since the last walk. */
    std::vector<CDeviceEntry> Enumerate();

    /** Has the next enumeration that begins walk in any case. */
    void LookAnew();

    /** The owner of a disk, looked up in sysfs when no enumeration has met the path yet. */
    std::optional<CDiskOwner> Owner(const std::string& path);

    /** What `read` tells of a driver, asked again only when a controller has come or gone: before that the
     * driver cannot have been exchanged. */
    std::string DriverVersion(const std::string& driver, std::string (*read)(const std::string& driver));

    /** Of the `number`-th entry of the last enumeration, counted from 1. */
    std::optional<CPciLocation> Location(std::uint32_t number) const;

private:
    /** With the lock held: neither the last walk nor one under way is relied upon any more. */
    void Doubt();

    mutable std::mutex m_Lock; ///< never held while sysfs is read
    std::filesystem::path m_Root = "/sys";
    std::optional<CNvmeNames> m_Names; ///< as they were at the last walk, when that can be relied upon
    std::uint64_t m_Doubts = 0;        ///< counted, so that a walk notices those during it
    std::vector<CDeviceEntry> m_Entries;
    std::unordered_map<std::string, CDiskOwner> m_Owners;
    std::vector<std::optional<CPciLocation>> m_Locations;
    std::unordered_map<std::string, std::string> m_DriverVersions; ///< since that walk
    std::uint64_t m_Walks = 0;
};

/** The table of this process. */
CDeviceTable& deviceTable();

/** The node that takes the admin commands of a controller. */
std::string controllerNode(std::uint32_t instance);

} // namespace TLXX::Linux
