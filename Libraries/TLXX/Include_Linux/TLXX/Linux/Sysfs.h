#pragma once

#include <TLXX/DeviceBackend.h>
#include <TLXX/Export.h>
#include <TLXX/PciLocation.h>

#include <cstdint>
#include <filesystem>
#include <optional>
#include <string>
#include <vector>

namespace TLXX::Linux {

/** One NVMe controller as sysfs shows it. */
struct CController
{
    std::uint32_t m_Instance = 0; ///< 3 for nvme3
    std::uint64_t m_Node = 0;     ///< number of its node in sysfs, which the kernel never uses twice
    std::string m_Name;           ///< "nvme3"
    std::string m_Transport;      ///< "pcie", "tcp" ...
    std::string m_State;          ///< "live", "dead" ...; empty if the kernel does not say
    std::string m_Driver;         ///< driver of the PCI function; the transport's module name elsewhere
    std::optional<CPciLocation> m_Location;

    /**
     * The namespace with the lowest identifier: path of its disk and identifier. Empty and 0 when there is
     * none.
     */
    std::string m_DeviceName;
    std::uint32_t m_NamespaceId = 0;
    std::uint32_t m_Namespaces = 0; ///< the number of its namespaces

    /**
     * Whether every attribute was there that each controller has. One is missing while a controller comes or
     * goes.
     */
    bool m_Whole = false;
};

/**
 * The controllers below `root` (normally "/sys") in the order of their instance numbers. Throws
 * `std::runtime_error` when descriptors or memory run out, so that no controller is taken for missing.
 */
TLXX_EXPORT std::vector<CController> listControllers(const std::filesystem::path& root);

/** The sysfs that this process reads; "/sys" unless it was set. Safe from any thread. */
TLXX_EXPORT std::filesystem::path sysfsRoot();

/** Lets the process read another sysfs, such as a recorded tree. Safe from any thread. */
TLXX_EXPORT void setSysfsRoot(std::filesystem::path root);

/**
 * The disks of this machine, in order: one disk for each PCI Express controller that has a namespace.
 * Remembers the controller and namespace of each path, and the locations in order, for queries and look-ups.
 * Throws as `listControllers` does.
 */
TLXX_EXPORT std::vector<CDeviceEntry> enumerateDevices();

} // namespace TLXX::Linux
