#pragma once

#include <TLXX/Export.h>

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace TLXX::Linux {

/** The controller that gets the commands for a disk, and the namespace of that disk. */
struct CDiskOwner
{
    std::uint32_t m_Instance = 0;
    std::uint64_t m_Node = 0; ///< the controller's node in sysfs; no later controller has the same number
    std::uint32_t m_NamespaceId = 0;

    /** Distinguishes this disk from all that were or will be at its path. */
    TLXX_EXPORT std::string Instance() const;

    /** The owner whose `Instance` is exactly this text; none for any other text. */
    TLXX_EXPORT static std::optional<CDiskOwner> Parse(std::string_view instance);
};

/** The path of the node that gets the admin commands for a controller. */
TLXX_EXPORT std::string controllerNode(std::uint32_t instance);

} // namespace TLXX::Linux
