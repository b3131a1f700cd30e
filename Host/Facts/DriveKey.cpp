#include "Facts/DriveKey.h"

#include <algorithm>
#include <map>

namespace Host::Cli {

std::vector<std::string> driveKeys(const std::vector<Drive>& drives)
{
    std::map<std::string, int> bySerial;
    for (const Drive& drive : drives)
        ++bySerial[drive.m_Serial];
    std::vector<std::string> keys;
    std::map<std::string, int> taken;
    for (const Drive& drive : drives) {
        std::string key = drive.m_Serial;
        if (key.empty() || bySerial[key] > 1)
            key = drive.m_PciAddress.empty() ? "device-" + drive.m_Device : "pci-" + drive.m_PciAddress;
        // This key is already used. Several drives of one adapter have its address, or another drive's serial
        // number looks like an address.
        std::string unique = key;
        while (++taken[unique] > 1)
            unique = key + '#' + std::to_string(taken[key]);
        keys.push_back(unique);
    }
    return keys;
}

std::vector<SharedSerial> sharedSerials(const std::vector<Drive>& drives)
{
    std::map<std::string, std::vector<std::string>> devices;
    for (const Drive& drive : drives) {
        std::vector<std::string>& known = devices[drive.m_Serial];
        if (std::find(known.begin(), known.end(), drive.m_Device) == known.end())
            known.push_back(drive.m_Device);
    }
    std::vector<SharedSerial> shared;
    for (const auto& [serial, names] : devices)
        if (!serial.empty() && names.size() > 1)
            shared.push_back({serial, names});
    return shared;
}

} // namespace Host::Cli
