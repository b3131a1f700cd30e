#include "Facts/DriveIdentity.h"

namespace Host::Cli {

std::string subjectText(const DriveIdentity& drive)
{
    if (!drive.m_Name.empty())
        return drive.m_Name;
    std::string text = drive.m_Vendor;
    for (const std::string& part : {drive.m_Model, drive.m_Serial.empty() ? "" : "(" + drive.m_Serial + ")"})
        text += (text.empty() || part.empty() ? "" : " ") + part;
    return text.empty() ? "An adapter" : text;
}

} // namespace Host::Cli
