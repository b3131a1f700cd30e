#pragma once

#include <string>

namespace Host::Cli {

/** What a drive is known by. Empty: the plug-in does not report it. */
struct DriveIdentity
{
    std::string m_Name; ///< the adapter's
    std::string m_Device;
    std::string m_Vendor;
    std::string m_Model;
    std::string m_Serial;
    std::string m_Location;
    std::string m_PciAddress;

    friend bool operator==(const DriveIdentity&, const DriveIdentity&) = default;
};

/** What a sentence calls the drive: its name, or its maker, model and serial number while it has none. */
std::string subjectText(const DriveIdentity& drive);

} // namespace Host::Cli
