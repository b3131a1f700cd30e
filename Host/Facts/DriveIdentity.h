#pragma once

#include <string>

namespace Host::Cli {

/** How the location that the plug-in shows for a drive relates to where the drive is. */
enum class ShownPlace
{
    Real,           ///< it is the same, or nobody knows better
    WithoutSegment, ///< only the PCI segment is missing
    Another,        ///< it is another place
};

/** What a drive is known by. Empty: the plug-in does not report it. */
struct DriveIdentity
{
    std::string m_Name; ///< the adapter's
    std::string m_Device;
    std::string m_Vendor;
    std::string m_Model;
    std::string m_Serial;
    std::string m_Location;
    std::string m_PciAddress; ///< where the drive really is; `m_Location` is the plug-in's word
    ShownPlace m_Place = ShownPlace::Real;

    friend bool operator==(const DriveIdentity&, const DriveIdentity&) = default;
};

/** What a sentence calls the drive: its name, or its maker, model and serial number while it has none. */
std::string subjectText(const DriveIdentity& drive);

} // namespace Host::Cli
