#pragma once

#include <TLXX/Export.h>
#include <TLXX/PciLocation.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace TLXX {

/**
 * How a controller is attached. A value is left out when the system does not tell it, or tells an impossible
 * one.
 */
struct CPciLink
{
    std::optional<float> m_Speed;        ///< now, in gigatransfers a second
    std::optional<float> m_HighestSpeed; ///< that the controller can do
    std::optional<std::uint32_t> m_Lanes;
    std::optional<std::uint32_t> m_MostLanes;
    std::optional<std::uint32_t> m_NumaNode; ///< the memory node that is nearest
};

/** What the system says of one NVMe controller before any command is sent to it. */
struct CControllerState
{
    std::string m_Name;       ///< the system's name of the controller, such as "nvme0"
    std::string m_DeviceName; ///< the disk that the enumeration yields for it; empty when it yields none
    std::string m_Driver;
    std::string m_Transport;        ///< such as "pcie"
    std::string m_State;            ///< such as "live"; empty if unknown
    std::string m_SerialNumber;     ///< as the system learned it; empty if it does not tell
    std::string m_Model;            ///< likewise
    std::string m_FirmwareRevision; ///< likewise
    std::optional<CPciLocation> m_Location;
    CPciLink m_Link;
    std::uint32_t m_Namespaces = 0;   ///< how many the system shows; the disk is the first of them
    std::uint32_t m_AccessStatus = 0; ///< 0 when this user may open it, else a status for `statusText`
    std::string m_AccessPath;         ///< the path whose opening `m_AccessStatus` is about
};

/**
 * Every NVMe controller that the system knows, including those without a disk, in enumeration order. Throws
 * `std::runtime_error` or `std::bad_alloc` when descriptors or memory run out, so that no controller is taken
 * for missing.
 */
TLXX_EXPORT std::vector<CControllerState> controllerStates();

} // namespace TLXX
