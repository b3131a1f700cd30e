#pragma once

#include <string>

namespace Host::Cli {

/** How the location that the plug-in shows for a drive differs from the drive's real location. */
enum class ShownPlace
{
    Real,           ///< they are the same, or the real one is not known
    WithoutSegment, ///< the shown one lacks the PCI segment
    Another,        ///< they are different places
};

/** What identifies a drive. A text is empty when the plug-in does not report it. */
struct DriveIdentity
{
    std::string m_Name; ///< the adapter's
    std::string m_Device;
    std::string m_Vendor;
    std::string m_Model;
    std::string m_Serial;
    std::string m_Location;
    std::string m_PciAddress; ///< the real location; `m_Location` is the one that the plug-in shows
    ShownPlace m_Place = ShownPlace::Real;

    friend bool operator==(const DriveIdentity&, const DriveIdentity&) = default;
};

/** How a sentence names the drive: by its name, or by maker, model and serial number while it has no name. */
std::string subjectText(const DriveIdentity& drive);

} // namespace Host::Cli
