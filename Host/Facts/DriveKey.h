#pragma once

#include "Facts/Drives.h"

#include <string>
#include <vector>

namespace Host::Cli {

/**
 * The key of each drive in documents and stores, in the order of `drives`. No key occurs twice. The key is
 * the serial number. If that is empty or another drive has it too, the key is "pci-" and the whole PCI
 * address.
 */
std::vector<std::string> driveKeys(const std::vector<Drive>& drives);

/** A serial number that several devices have. */
struct SharedSerial
{
    std::string m_Serial;
    std::vector<std::string> m_Devices;
};

/** Every serial number that more than one device has. These are two controllers of one drive, or copies. */
std::vector<SharedSerial> sharedSerials(const std::vector<Drive>& drives);

} // namespace Host::Cli
