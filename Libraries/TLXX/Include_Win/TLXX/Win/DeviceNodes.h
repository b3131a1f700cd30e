#pragma once

#include <TLXX/Export.h>
#include <TLXX/PciLocation.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

// The device tree of the configuration manager. Safe from any thread. A node that has gone meanwhile has no
// properties.
namespace TLXX::Win {

/** A node of the device tree, by the configuration manager's number. */
using DeviceNode = std::uint32_t;

/** A disk that an enumeration has found. */
struct CFoundDisk
{
    DeviceNode m_Controller = 0;
    std::string m_DeviceName;
    std::string m_Instance; ///< identifies the disk, unlike any other that was or will be at its path
};

/**
 * Stores the disks that the last enumeration yielded, in its order. Locations are counted in this order, and
 * queries use the list to find the device instance of a path.
 */
TLXX_EXPORT void rememberEnumeration(std::vector<CFoundDisk> disks);

/** Every node of the tree, parents before their children. */
TLXX_EXPORT std::vector<DeviceNode> deviceNodes();

/** The texts of a property (a `CM_DRP_` number); none when the node lacks it. */
TLXX_EXPORT std::vector<std::string> nodeTexts(DeviceNode node, std::uint32_t property);

/** The name of the node's service; empty when it has none. */
TLXX_EXPORT std::string nodeService(DeviceNode node);

/** The node's place on the PCI buses; none when the node has no such property. */
TLXX_EXPORT std::optional<CPciLocation> nodeLocation(DeviceNode node);

} // namespace TLXX::Win
